#pragma once

#include "drawing/Rect.h"

namespace norvane {

// How a corner turns: along a circle, or along a curve that leaves the edges more gently.
enum class CornerStyle { circular, continuous };

// A rectangle with rounded corners. A radius of half the shorter side or more makes a capsule.
struct RoundedRect {
    Rect rect;
    double radius = 0;
    CornerStyle corners = CornerStyle::circular;

    bool operator==(const RoundedRect&) const = default;
};

}  // namespace norvane
