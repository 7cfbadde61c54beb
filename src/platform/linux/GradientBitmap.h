#pragma once

#include "drawing/Fill.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/PixelPlacement.h"
#include "platform/linux/PixelRect.h"

namespace norvane {

// The colours (CAIRO_FORMAT_ARGB32) of a gradient from side to side, for these pixels of the surface: its
// rows are all alike, so that making it and painting with it costs a fraction of what the image backend takes
// to find each pixel's colour. None for any other fill; the backend knows itself when a row is of one colour.
CairoSurface gradientBitmap(const Fill& fill, const PixelPlacement& placement, const PixelRect& pixels);

}  // namespace norvane
