#pragma once

#include "drawing/Size.h"

namespace norvane {

// What a set text measures, in points.
struct TextMetrics {
    Size size;
    // From the top to the baseline of the first line.
    double baseline = 0;
    // At least 1, also for an empty text.
    int lines = 1;

    bool operator==(const TextMetrics&) const = default;
};

}  // namespace norvane
