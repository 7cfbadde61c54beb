#pragma once

#include "drawing/DisplayItem.h"

namespace norvane {

// The shapes with their outer edges on whole pixels, of which `scale` make a point; of neither side does less
// than one pixel remain. No edge leaves the pixels that it was in. A path is moved where all its lines run
// along the pixels; of others only a line's width is made whole.
Shape snappedToPixels(const Shape& shape, double scale);
StrokeShape snappedToPixels(const StrokeShape& stroke, double scale);

}  // namespace norvane
