#pragma once

#include <optional>

#include "drawing/Arc.h"
#include "drawing/StrokeStyle.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/PixelRect.h"

namespace norvane {

// The line along a part of a circle as a coverage mask, from each pixel's distance to the line: ten times as
// fast as a path of curves that is cut into short lines, and as smooth. For gauges, whose rings change with
// each frame.
struct ArcCoverage {
    CairoSurface mask;  // CAIRO_FORMAT_A8; null where nothing is to be seen
    PixelRect area;     // of the surface, where the mask lies

    // `arc` and `style` are in pixels of the surface, and only `visible` is wanted. None for what this cannot
    // do: dashes, an open arc with cut ends, a line wider than its circle, a very large circle.
    static std::optional<ArcCoverage> of(const Arc& arc, const StrokeStyle& style, const PixelRect& visible);
};

}  // namespace norvane
