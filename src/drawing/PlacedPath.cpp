#include "drawing/PlacedPath.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace norvane {
namespace {

class Extent {
 public:
    void operator()(const Path::MoveTo& move) { add(move.to); }
    void operator()(const Path::LineTo& line) { add(line.to); }
    void operator()(const Path::CurveTo& curve) {
        add(curve.first);
        add(curve.second);
        add(curve.to);
    }
    void operator()(const Path::Close&) {}

    bool isEmpty() const { return !(low_.x <= high_.x && low_.y <= high_.y); }
    Point low() const { return low_; }
    Point high() const { return high_; }

 private:
    void add(Point point) {
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) return;
        low_ = {std::min(low_.x, point.x), std::min(low_.y, point.y)};
        high_ = {std::max(high_.x, point.x), std::max(high_.y, point.y)};
    }

    static constexpr double kFar = std::numeric_limits<double>::infinity();
    Point low_{kFar, kFar};
    Point high_{-kFar, -kFar};
};

}  // namespace

Rect PlacedPath::bounds() const {
    if (!path) return {};
    Extent extent;
    for (const Path::Segment& segment : path->segments)
        std::visit(extent, segment);
    if (extent.isEmpty()) return {};
    const double left = std::min(extent.low().x * scaleX, extent.high().x * scaleX);
    const double right = std::max(extent.low().x * scaleX, extent.high().x * scaleX);
    const double top = std::min(extent.low().y * scaleY, extent.high().y * scaleY);
    const double bottom = std::max(extent.low().y * scaleY, extent.high().y * scaleY);
    return {{offset.x + left, offset.y + top}, {right - left, bottom - top}};
}

bool PlacedPath::operator==(const PlacedPath& other) const {
    if (offset != other.offset || scaleX != other.scaleX || scaleY != other.scaleY) return false;
    if (path == other.path) return true;
    return path && other.path && *path == *other.path;
}

}  // namespace norvane
