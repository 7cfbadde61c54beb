#include "platform/linux/CairoShapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <variant>

#include "platform/linux/RoundedPath.h"

namespace norvane {
namespace {

// Pixels. Shorter dashes are not told apart, and there can be millions of them.
constexpr double kShortestDashes = 0.5;

struct PatternDeleter {
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};

class Outline {
 public:
    Outline(cairo_t* context, double scale)
        : context_(context), scale_(scale), far_(kFarthestPixel / scale) {}

    bool operator()(const RoundedRect& rounded) const {
        if (!isFinite(rounded.rect)) return false;
        const Rect near = withinReach(rounded.rect, scale_);
        if (near.isEmpty()) return false;
        addRoundedPath(context_, {near, rounded.radius, rounded.corners});
        return true;
    }

    // A circle cannot be cut without becoming something else.
    bool operator()(const Arc& arc) const {
        const double turns = arc.to - arc.from;
        if (!isFinite(arc.center) || !std::isfinite(turns) || !(turns > 0) || !(arc.radius > 0) ||
            arc.radius > far_ || std::abs(arc.center.x) > far_ || std::abs(arc.center.y) > far_) {
            return false;
        }
        constexpr double kTurn = 2 * std::numbers::pi;
        cairo_new_sub_path(context_);
        if (isClosed(arc)) {
            cairo_arc(context_, arc.center.x, arc.center.y, arc.radius, 0, kTurn);
            cairo_close_path(context_);
        } else {
            const double from = (arc.from - std::floor(arc.from) - 0.25) * kTurn;
            cairo_arc(context_, arc.center.x, arc.center.y, arc.radius, from, from + turns * kTurn);
        }
        return true;
    }

    bool operator()(const PlacedPath& placed) const {
        if (!placed.path || placed.path->segments.empty()) return false;
        Segments segments{context_, placed, far_};
        for (const Path::Segment& segment : placed.path->segments)
            std::visit(segments, segment);
        if (!segments.areNumbers) cairo_new_path(context_);
        return segments.areNumbers;
    }

 private:
    struct Segments {
        cairo_t* context;
        const PlacedPath& placed;
        double far;
        bool areNumbers = true;

        void operator()(const Path::MoveTo& move) {
            const Point to = at(move.to);
            cairo_move_to(context, to.x, to.y);
        }
        void operator()(const Path::LineTo& line) {
            const Point to = at(line.to);
            cairo_line_to(context, to.x, to.y);
        }
        void operator()(const Path::CurveTo& curve) {
            const Point first = at(curve.first);
            const Point second = at(curve.second);
            const Point to = at(curve.to);
            cairo_curve_to(context, first.x, first.y, second.x, second.y, to.x, to.y);
        }
        void operator()(const Path::Close&) { cairo_close_path(context); }

        Point at(const Point& point) {
            const Point placedAt{placed.offset.x + point.x * placed.scaleX,
                                 placed.offset.y + point.y * placed.scaleY};
            if (std::isnan(placedAt.x) || std::isnan(placedAt.y)) {
                areNumbers = false;
                return {};
            }
            return {std::clamp(placedAt.x, -far, far), std::clamp(placedAt.y, -far, far)};
        }
    };

    cairo_t* context_;
    double scale_;
    double far_;
};

bool isNumber(const Color& color) {
    return std::isfinite(color.red) && std::isfinite(color.green) && std::isfinite(color.blue) &&
           !std::isnan(color.alpha);
}

void addStop(cairo_pattern_t* pattern, double at, const Color& color) {
    cairo_pattern_add_color_stop_rgba(pattern, at, color.red, color.green, color.blue, color.alpha);
}

}  // namespace

bool addShape(cairo_t* context, const Shape& shape, double scale) {
    return std::visit(Outline(context, scale), shape);
}

bool setStroke(cairo_t* context, const StrokeStyle& style, double scale) {
    if (!std::isfinite(style.width) || style.width <= 0) return false;
    cairo_set_line_width(context, std::min(style.width, kFarthestPixel / scale));
    cairo_set_line_cap(context, style.cap == LineCap::round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(context,
                        style.join == LineJoin::round ? CAIRO_LINE_JOIN_ROUND : CAIRO_LINE_JOIN_MITER);
    if (isDashed(style, scale)) {
        const std::array<double, 2> dashes{style.dashOn, style.dashOff};
        cairo_set_dash(context, dashes.data(), 2, 0);
    }
    return true;
}

bool setColor(cairo_t* context, const Color& color) {
    if (!isNumber(color) || !(color.alpha > 0)) return false;
    cairo_set_source_rgba(context, color.red, color.green, color.blue, color.alpha);
    return true;
}

bool setFill(cairo_t* context, const Fill& fill, double scale) {
    if (fill.isPlain()) return setColor(context, fill.from);
    if (!isNumber(fill.from) || !isNumber(fill.to) || fill.isClear() || !isFinite(fill.start) ||
        !isFinite(fill.end)) {
        return false;
    }
    if (fill.start == fill.end) return setColor(context, fill.to);
    const double far = kFarthestPixel / scale;
    const auto near = [far](double value) { return std::clamp(value, -far, far); };
    const std::unique_ptr<cairo_pattern_t, PatternDeleter> pattern(cairo_pattern_create_linear(
        near(fill.start.x), near(fill.start.y), near(fill.end.x), near(fill.end.y)));
    const GradientEnds ends = endsOf(fill);
    addStop(pattern.get(), 0, ends.from);
    addStop(pattern.get(), 1, ends.to);
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
    cairo_set_source(context, pattern.get());
    return true;
}

GradientEnds endsOf(const Fill& fill) {
    const auto beside = [](const Color& end, const Color& other) {
        return end.alpha > 0 ? end : other.withOpacity(0);
    };
    return {beside(fill.from, fill.to), beside(fill.to, fill.from)};
}

bool isFinite(const Point& point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

bool isFinite(const Rect& rect) {
    return isFinite(rect.origin) && std::isfinite(rect.maxX()) && std::isfinite(rect.maxY());
}

bool isClosed(const Arc& arc) {
    return arc.to - arc.from >= 1;
}

bool isDashed(const StrokeStyle& style, double scale) {
    return style.dashOn > 0 && style.dashOff > 0 && std::isfinite(style.dashOn) &&
           std::isfinite(style.dashOff) && (style.dashOn + style.dashOff) * scale >= kShortestDashes;
}

Rect withinReach(const Rect& rect, double scale) {
    const double far = kFarthestPixel / scale;
    return rect.intersection({{-far, -far}, {2 * far, 2 * far}});
}

}  // namespace norvane
