#pragma once

#include <cstddef>

#include "platform/linux/CairoHandles.h"

namespace norvane {

// The coverage of a set text's pixels, for one way to put it on the pixel grid.
struct TextMask {
    struct Grid {
        double scale = 1;   // pixels per point
        double scaleX = 1;  // of the text itself, about its corner
        double scaleY = 1;
        double x = 0;  // where in its pixel the text's corner is, 0 to below 1
        double y = 0;

        bool operator==(const Grid&) const = default;
    };

    Grid grid;
    CairoSurface coverage;  // CAIRO_FORMAT_A8; none for a text without ink
    int left = 0;           // pixels from the text's corner to the mask's
    int top = 0;
    std::size_t bytes = 0;
};

}  // namespace norvane
