#pragma once

#include <cairo.h>

#include "drawing/DisplayItem.h"
#include "platform/linux/TextLayouts.h"

namespace norvane {

// Paints the text with the context's source. The context's units are points, `scale` pixels each, and its
// origin is on a whole pixel; the context is left with another matrix.
void paintText(cairo_t* context, const DrawText& text, double scale, TextLayouts& layouts);

}  // namespace norvane
