#pragma once

#include <string>

#include "Affine.h"
#include "drawing/PictureLayer.h"
#include "drawing/StrokeStyle.h"

namespace norvane {

// How an element is painted: what stands at it, and at the groups around it.
struct Paint {
    // "none", "currentColor", "#" and six digits, or "url(#" a gradient's name ")".
    std::string fill = "#000000";
    std::string stroke = "none";
    double fillOpacity = 1;
    double strokeOpacity = 1;
    FillRule rule = FillRule::nonZero;
    StrokeStyle line;
    // From the element's own coordinates to the grid's.
    Affine transform;
};

}  // namespace norvane
