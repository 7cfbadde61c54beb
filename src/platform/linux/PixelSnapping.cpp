#include "platform/linux/PixelSnapping.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <variant>

#include "platform/linux/CairoShapes.h"

namespace norvane {
namespace {

// Halves always go the same way, also those that are one but for a rounding error, so that equal things in
// equal places of their pixels look the same.
double nearest(double pixels) {
    return std::floor(pixels + 0.5 + 1e-9);
}

double wholeWidth(double points, double scale) {
    return std::max(1.0, nearest(points * scale));
}

// From the middle of a line to its middle, in points, of what is `line` pixels wide; 0 for what is filled.
struct Span {
    double from = 0;
    double length = 0;
};
Span snapped(double from, double to, double line, double scale) {
    const double first = from * scale - line / 2;
    const double last = to * scale + line / 2;
    const double length = std::max(nearest(last) - nearest(first), line + 1);
    // What was less than a pixel stays in the pixel that it was in.
    const double outer =
        std::min(nearest(first), std::max(std::ceil(last - 1e-9) - length, std::floor(first + 1e-9)));
    return {(outer + line / 2) / scale, (length - line) / scale};
}

class Snapped {
 public:
    Snapped(double line, double scale) : line_(line), scale_(scale) {}

    Shape operator()(const RoundedRect& rounded) const {
        const Rect& rect = rounded.rect;
        if (rect.isEmpty() || !isFinite(rect)) return rounded;
        const Span x = snapped(rect.minX(), rect.maxX(), line_, scale_);
        const Span y = snapped(rect.minY(), rect.maxY(), line_, scale_);
        return RoundedRect{{{x.from, y.from}, {x.length, y.length}}, rounded.radius, rounded.corners};
    }

    // As round as before: both ways it is equally large.
    Shape operator()(const Arc& arc) const {
        if (!isFinite(arc.center) || !std::isfinite(arc.radius) || !(arc.radius > 0)) return arc;
        const double across = std::max(1.0 + line_, nearest(2 * arc.radius * scale_ + line_));
        const auto middle = [&](double at) {
            return (nearest(at * scale_ - across / 2) + across / 2) / scale_;
        };
        Arc result = arc;
        result.center = {middle(arc.center.x), middle(arc.center.y)};
        result.radius = (across - line_) / 2 / scale_;
        return result;
    }

    Shape operator()(const PlacedPath& placed) const {
        if (!runsAlongPixels(placed)) return placed;
        auto moved = std::make_shared<Path>();
        for (Path::Segment segment : placed.path->segments) {
            if (auto* move = std::get_if<Path::MoveTo>(&segment)) move->to = at(move->to, placed);
            if (auto* line = std::get_if<Path::LineTo>(&segment)) line->to = at(line->to, placed);
            moved->segments.push_back(segment);
        }
        return PlacedPath{std::move(moved), {}, 1, 1};
    }

 private:
    static bool runsAlongPixels(const PlacedPath& placed) {
        if (!placed.path) return false;
        Point last;
        for (const Path::Segment& segment : placed.path->segments) {
            if (std::holds_alternative<Path::CurveTo>(segment)) return false;
            if (const auto* move = std::get_if<Path::MoveTo>(&segment)) last = move->to;
            if (const auto* line = std::get_if<Path::LineTo>(&segment)) {
                if (line->to.x != last.x && line->to.y != last.y) return false;
                last = line->to;
            }
        }
        return true;
    }

    Point at(const Point& point, const PlacedPath& placed) const {
        const auto whole = [this](double points) {
            return (nearest(points * scale_ - line_ / 2) + line_ / 2) / scale_;
        };
        return {whole(placed.offset.x + point.x * placed.scaleX),
                whole(placed.offset.y + point.y * placed.scaleY)};
    }

    double line_;  // pixels
    double scale_;
};

}  // namespace

Shape snappedToPixels(const Shape& shape, double scale) {
    return std::visit(Snapped(0, scale), shape);
}

StrokeShape snappedToPixels(const StrokeShape& stroke, double scale) {
    if (!std::isfinite(stroke.style.width) || !(stroke.style.width > 0)) return stroke;
    const double line = wholeWidth(stroke.style.width, scale);
    StrokeShape result = stroke;
    result.shape = std::visit(Snapped(line, scale), stroke.shape);
    result.style.width = line / scale;
    return result;
}

}  // namespace norvane
