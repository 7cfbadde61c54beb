#include "drawing/Shape.h"

namespace norvane {

Rect boundsOf(const Shape& shape) {
    if (const auto* rounded = std::get_if<RoundedRect>(&shape)) return rounded->rect;
    if (const auto* arc = std::get_if<Arc>(&shape)) {
        return {{arc->center.x - arc->radius, arc->center.y - arc->radius},
                {2 * arc->radius, 2 * arc->radius}};
    }
    return std::get<PlacedPath>(shape).bounds();
}

}  // namespace norvane
