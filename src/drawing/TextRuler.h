#pragma once

#include <limits>
#include <string_view>

#include "drawing/TextMetrics.h"
#include "drawing/TextStyle.h"

namespace norvane {

// Measures text, and nothing else: layout asks it, and a fixed one makes layout the same everywhere.
// Asked on the main thread only. Any bytes may be given; what is not UTF-8 is measured as replacement
// characters, never refused.
class TextRuler {
 public:
    static constexpr double kUnlimitedWidth = std::numeric_limits<double>::infinity();

    virtual ~TextRuler() = default;

    // The extent of `text` wrapped to `maxWidth` points (words first, then characters, so that no line is
    // wider than `maxWidth` unless a single character is). With `kUnlimitedWidth` only line feeds break.
    virtual TextMetrics measure(std::string_view text, const TextStyle& style, double maxWidth) = 0;
};

}  // namespace norvane
