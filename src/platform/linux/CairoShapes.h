#pragma once

#include <cairo.h>

#include "drawing/Fill.h"
#include "drawing/Shape.h"
#include "drawing/StrokeStyle.h"

namespace norvane {

// Cairo keeps device coordinates in 24.8 fixed point and the image backend in 16.16. Beyond this distance
// in pixels nothing is visible on any surface, and well within it both are exact.
inline constexpr double kFarthestPixel = 16'000;

// The drawing's values in Cairo's terms. Contexts are scaled to points; `scale` is the number of pixels in
// one. Each gives false where there is nothing to be seen or where a number is none, and then the item is
// left out.

// Adds the outline to the context's path. What lies far outside of every surface is brought nearer.
bool addShape(cairo_t* context, const Shape& shape, double scale);
// How the path is going to be stroked.
bool setStroke(cairo_t* context, const StrokeStyle& style, double scale);
// What with.
bool setFill(cairo_t* context, const Fill& fill, double scale);
bool setColor(cairo_t* context, const Color& color);

// The two colours of a gradient. They are mixed before they are multiplied by their opacity, so a clear one
// is given the other's colour: its own would show in the middle.
struct GradientEnds {
    Color from;
    Color to;
};
GradientEnds endsOf(const Fill& fill);

bool isFinite(const Point& point);
bool isFinite(const Rect& rect);

// Whether the arc is a whole circle.
bool isClosed(const Arc& arc);
// Whether the line has gaps, of which there are not more than can be seen.
bool isDashed(const StrokeStyle& style, double scale);
// The part of the rectangle that is near enough to be drawn.
Rect withinReach(const Rect& rect, double scale);

}  // namespace norvane
