#pragma once

#include "drawing/Font.h"

namespace norvane {

enum class TextAlignment { leading, center, trailing };

// How a run of text is set.
struct TextStyle {
    Font font;
    // Added between the lines of a wrapped text, in points.
    double lineSpacing = 0;
    TextAlignment alignment = TextAlignment::leading;

    bool operator==(const TextStyle&) const = default;
};

}  // namespace norvane
