#pragma once

#include <optional>
#include <vector>

#include "drawing/DisplayItem.h"
#include "drawing/StrokeStyle.h"
#include "views/FillStyle.h"

namespace norvane {

// A line along a shape's outline.
struct Stroke {
    FillStyle fill;
    StrokeStyle style = {};
};

// A shape's shadow, or, in a bright colour, its glow. It is of the shape's line where the shape is not
// filled.
struct Shadow {
    Paint paint = Ink::clear;
    // Twice the standard deviation of the blur, in points.
    double radius = 0;
    Point offset = {};
    // Not seen through the shape.
    bool isOutsideOnly = false;
};

// How a shape looks. Everything about it moves where its change is animated.
struct ShapeStyle {
    FillStyle fill = {};
    std::optional<Stroke> stroke = {};
    // The first one at the back.
    std::vector<Shadow> shadows = {};
    // How much of its width is there, from its leading edge, 0 to 1.
    double leadingPart = 1;
    // On whole pixels, for dots and hairlines.
    Snapping snapping = Snapping::none;
};

}  // namespace norvane
