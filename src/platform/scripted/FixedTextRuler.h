#pragma once

#include "drawing/TextRuler.h"

namespace norvane {

// A ruler for which every character is equally wide: six tenths of the size, bold ones a tenth more. Lines
// are 1.25 times the size high. Layout measured by it is the same on every machine.
class FixedTextRuler final : public TextRuler {
 public:
    TextMetrics measure(std::string_view text, const TextStyle& style, double maxWidth) override;
};

}  // namespace norvane
