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
    // The most lines; the last of them ends in an ellipsis where there is more. As many as it takes for 0.
    int lineLimit = 0;

    bool operator==(const TextStyle&) const = default;
};

}  // namespace norvane
