#pragma once

#include "drawing/Point.h"

namespace norvane {

// What the pointer did on a surface.
struct PointerEvent {
    enum class Kind { move, leave, press, release };

    Kind kind = Kind::move;
    // In the surface's own points; means nothing for `leave`.
    Point at;

    bool operator==(const PointerEvent&) const = default;
};

}  // namespace norvane
