#include "dashboard/CachedPaths.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace norvane {
namespace {

// Shares of the height, from 0 at the bottom to 1.
struct Levels {
    std::vector<double> base;
    std::vector<double> mid;
    std::vector<double> top;
};

double topOf(const CPUHistoryPoint& point) {
    return point.total > 0 ? std::min(point.total / 100, 1.0) : 0;
}

Levels levelsOf(std::span<const CPUHistoryPoint> history) {
    Levels levels;
    for (const CPUHistoryPoint& point : history) {
        const double top = topOf(point);
        const double sum = point.performance + point.efficiency;
        const double share = sum > 0 ? point.efficiency / sum : 0;
        levels.base.push_back(0);
        levels.mid.push_back(top * share);
        levels.top.push_back(top);
    }
    return levels;
}

class Curves {
 public:
    Curves(std::size_t count, Size size) : count_(count), size_(size) {}

    Point at(const std::vector<double>& levels, std::size_t i) const {
        const auto back = static_cast<double>(count_ - 1 - i);
        return {size_.width - CachedPaths::step(size_.width) * back, size_.height * (1 - levels[i])};
    }
    // Level at each point: both control points lie half way, at the heights of the two ends.
    static Path::CurveTo between(Point from, Point to) {
        const double middle = (from.x + to.x) / 2;
        return {{middle, from.y}, {middle, to.y}, to};
    }
    std::shared_ptr<const Path> stroke(const std::vector<double>& levels) const {
        Path path;
        path.segments.emplace_back(Path::MoveTo{at(levels, 0)});
        forward(path, levels);
        return std::make_shared<const Path>(std::move(path));
    }
    std::shared_ptr<const Path> band(const std::vector<double>& lower,
                                     const std::vector<double>& upper) const {
        Path path;
        path.segments.emplace_back(Path::MoveTo{at(lower, 0)});
        path.segments.emplace_back(Path::LineTo{at(upper, 0)});
        forward(path, upper);
        path.segments.emplace_back(Path::LineTo{at(lower, count_ - 1)});
        for (std::size_t i = count_ - 1; i > 0; --i)
            path.segments.emplace_back(between(at(lower, i), at(lower, i - 1)));
        path.segments.emplace_back(Path::Close{});
        return std::make_shared<const Path>(std::move(path));
    }

 private:
    void forward(Path& path, const std::vector<double>& levels) const {
        for (std::size_t i = 1; i < count_; ++i)
            path.segments.emplace_back(between(at(levels, i - 1), at(levels, i)));
    }

    std::size_t count_;
    Size size_;
};

}  // namespace

CachedPaths CachedPaths::of(std::span<const CPUHistoryPoint> history, Size size) {
    if (history.size() < 2) {
        const auto empty = std::make_shared<const Path>();
        return {empty, empty, empty, empty};
    }
    const Levels levels = levelsOf(history);
    const Curves curves(history.size(), size);
    return {.effBand = curves.band(levels.base, levels.mid),
            .effStroke = curves.stroke(levels.mid),
            .perfBand = curves.band(levels.mid, levels.top),
            .perfStroke = curves.stroke(levels.top)};
}

double CachedPaths::highest(std::span<const CPUHistoryPoint> history) {
    double highest = 0;
    for (const CPUHistoryPoint& point : history)
        highest = std::max(highest, topOf(point));
    return highest;
}

}  // namespace norvane
