#pragma once

#include "drawing/TextRuler.h"
#include "platform/linux/TextLayouts.h"

namespace norvane {

// Measures the very layouts that the painter shows.
class PangoTextRuler final : public TextRuler {
 public:
    // The layouts outlive the ruler.
    explicit PangoTextRuler(TextLayouts& layouts) : layouts_(layouts) {}

    TextMetrics measure(std::string_view text, const TextStyle& style, double maxWidth) override;

 private:
    TextLayouts& layouts_;
};

}  // namespace norvane
