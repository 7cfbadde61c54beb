#include "platform/linux/RoundedPath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace norvane {

void addRoundedPath(cairo_t* context, const RoundedRect& shape) {
    const Rect& r = shape.rect;
    if (r.isEmpty() || !std::isfinite(r.minX()) || !std::isfinite(r.minY()) || !std::isfinite(r.maxX()) ||
        !std::isfinite(r.maxY())) {
        return;
    }
    const double half = std::min(r.size.width, r.size.height) / 2;
    const double radius = std::isnan(shape.radius) ? 0 : std::clamp(shape.radius, 0.0, half);
    if (radius == 0) {
        cairo_rectangle(context, r.minX(), r.minY(), r.size.width, r.size.height);
        return;
    }
    constexpr double kQuarter = std::numbers::pi / 2;
    cairo_new_sub_path(context);
    cairo_arc(context, r.maxX() - radius, r.minY() + radius, radius, -kQuarter, 0);
    cairo_arc(context, r.maxX() - radius, r.maxY() - radius, radius, 0, kQuarter);
    cairo_arc(context, r.minX() + radius, r.maxY() - radius, radius, kQuarter, 2 * kQuarter);
    cairo_arc(context, r.minX() + radius, r.minY() + radius, radius, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(context);
}

}  // namespace norvane
