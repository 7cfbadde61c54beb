#pragma once

#include <cairo.h>

#include "drawing/RoundedRect.h"

namespace norvane {

// Adds the outline of the shape, a closed path of its own, to the context's path. The radius is at most half
// the shorter side; of an empty shape, or one with a coordinate that is not finite, there is no outline.
void addRoundedPath(cairo_t* context, const RoundedRect& shape);

// How far along its edges the corners of such a rectangle reach.
double cornerReach(const RoundedRect& shape);

}  // namespace norvane
