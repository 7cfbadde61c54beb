#pragma once

#include "drawing/Rect.h"

namespace norvane {

// A rectangle of device pixels: what the X server and the image surfaces count in.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    constexpr bool isEmpty() const { return width <= 0 || height <= 0; }
    constexpr bool contains(int px, int py) const {
        return px >= x && px - x < width && py >= y && py - y < height;
    }
    // The common part; empty where there is none.
    PixelRect intersection(const PixelRect& other) const;
    // The smallest rectangle around both, neither of which is empty.
    PixelRect united(const PixelRect& other) const;
    PixelRect moved(int dx, int dy) const { return {x + dx, y + dy, width, height}; }
    // In points at that scale.
    Rect inPoints(double scale) const;

    bool operator==(const PixelRect&) const = default;
};

// The nearest pixel position to a distance in points: kept within what the X protocol can name (16 bits), 0
// for what is not a number.
int pixelsAt(double points, double scale);
// The number of pixels that cover a length in points; the same bounds. A length that misses a whole number of
// pixels by rounding errors only does not get one more.
int pixelsCovering(double points, double scale);
// The smallest rectangle of whole pixels around the rectangle; empty for an empty one or one with a
// coordinate that is not a number.
PixelRect pixelsCovering(const Rect& rect, double scale);

}  // namespace norvane
