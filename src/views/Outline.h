#pragma once

#include <memory>

#include "drawing/Path.h"
#include "drawing/RoundedRect.h"

namespace norvane {

// Which form a shape has within its frame.
struct Outline {
    enum class Kind { rectangle, roundedRectangle, capsule, circle, arc, path };

    Kind kind = Kind::rectangle;
    // Of a rounded rectangle, in points.
    double radius = 0;
    CornerStyle corners = CornerStyle::circular;
    // Of an arc, in turns from the top, clockwise.
    double from = 0;
    double to = 1;
    // In points from the frame's corner.
    std::shared_ptr<const Path> path = {};

    static Outline rectangle() { return {}; }
    static Outline roundedRectangle(double radius, CornerStyle corners = CornerStyle::continuous) {
        return {.kind = Kind::roundedRectangle, .radius = radius, .corners = corners};
    }
    static Outline capsule() { return {.kind = Kind::capsule, .corners = CornerStyle::continuous}; }
    // The largest one in the middle of the frame.
    static Outline circle() { return {.kind = Kind::circle}; }
    // A part of that circle's line. More than a turn is drawn as one turn.
    static Outline arc(double from, double to) { return {.kind = Kind::arc, .from = from, .to = to}; }
    static Outline of(std::shared_ptr<const Path> path) {
        return {.kind = Kind::path, .path = std::move(path)};
    }
};

}  // namespace norvane
