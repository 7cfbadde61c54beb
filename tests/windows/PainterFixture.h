#pragma once

#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "PaintedImage.h"
#include "platform/linux/PangoTextRuler.h"

namespace norvane {

class PainterFixture : public testing::Test {
 protected:
    static constexpr Color kRed{1, 0, 0, 1};
    static constexpr Color kBlue{0, 0, 1, 1};
    static constexpr std::uint32_t kRedPixel = 0xFFFF0000;
    static constexpr std::uint32_t kBluePixel = 0xFF0000FF;

    PaintedImage painted(Size size, std::vector<DisplayItem> items, double scale = 1) {
        return {painter_, {size, std::move(items)}, scale};
    }
    PaintedImage painted(Size size, DrawCommand command, double scale = 1) {
        return painted(size, {{"", {{}, size}, std::move(command)}}, scale);
    }
    static FillShape filled(const Rect& rect, const Fill& fill) { return {RoundedRect{rect, 0}, fill}; }

    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
    CairoPainter painter_{layouts_};
};

}  // namespace norvane
