#pragma once

#include "drawing/Point.h"

namespace norvane {

// What the pointer did on a surface.
struct PointerEvent {
    enum class Kind { move, leave, press, release, scroll };

    Kind kind = Kind::move;
    // In the surface's own points; means nothing for `leave`.
    Point at;
    // For `scroll`: how far the contents are to move up and to the left, in points.
    Point by = {};

    bool operator==(const PointerEvent&) const = default;
};

}  // namespace norvane
