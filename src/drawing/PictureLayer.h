#pragma once

#include <optional>

#include "drawing/Fill.h"
#include "drawing/Path.h"
#include "drawing/StrokeStyle.h"

namespace norvane {

enum class FillRule { nonZero, evenOdd };

// One layer of a picture of ours, on its grid: a filled outline, or a stroked one.
struct PictureLayer {
    Path path;
    FillRule rule = FillRule::nonZero;
    // None for a filled layer.
    std::optional<StrokeStyle> stroke;
    // In the picture's own colours, its gradient in the grid's units; a symbol takes only the opacity of it.
    Fill fill;
};

}  // namespace norvane
