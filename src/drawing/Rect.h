#pragma once

#include "drawing/Insets.h"
#include "drawing/Point.h"
#include "drawing/Size.h"

namespace norvane {

// A rectangle in points. The origin is its top left corner; a rectangle of no width or height is empty.
struct Rect {
    Point origin;
    Size size;

    constexpr double minX() const { return origin.x; }
    constexpr double minY() const { return origin.y; }
    constexpr double midX() const { return origin.x + size.width / 2; }
    constexpr double midY() const { return origin.y + size.height / 2; }
    constexpr double maxX() const { return origin.x + size.width; }
    constexpr double maxY() const { return origin.y + size.height; }
    constexpr bool isEmpty() const { return !(size.width > 0 && size.height > 0); }

    // The left and top edges belong to the rectangle, the right and bottom ones to its neighbours.
    bool contains(Point point) const;
    bool intersects(const Rect& other) const;
    // The common part; empty where there is none.
    Rect intersection(const Rect& other) const;
    // The smallest rectangle around both. An empty one adds nothing.
    Rect united(const Rect& other) const;
    // Smaller by the insets; never of negative size.
    Rect inset(const Insets& by) const;
    // Larger by the distance on every side.
    Rect outset(double by) const;

    bool operator==(const Rect&) const = default;
};

}  // namespace norvane
