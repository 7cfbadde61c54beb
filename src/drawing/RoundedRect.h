#pragma once

#include "drawing/Rect.h"

namespace norvane {

// A rectangle with rounded corners. A radius of half the shorter side or more makes a capsule.
struct RoundedRect {
    Rect rect;
    double radius = 0;

    bool operator==(const RoundedRect&) const = default;
};

}  // namespace norvane
