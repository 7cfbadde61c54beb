#pragma once

#include <optional>
#include <string>

#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// A ring with a symbol in it, over a value and its title. The arc glows, and the glow breathes.
struct WidgetRingView {
    std::string title = {};
    std::string valueText = {};
    std::string iconName = {};
    // Of the symbol; as the texts' where there is none.
    std::optional<Paint> iconColor = {};
    // 0 to 1. What is beyond is not cut here: a spring that swings over the end swings over this one too.
    double progress = 0;
    // Whether the text in the middle is this share, in percent or as what there is of a whole.
    bool saysShare = true;
    Paint activeColor = Ink::green;
    bool useSpring = false;

    // Of the circle in the middle of the line, in points: the line reaches half its width beyond.
    static constexpr double kDiameter = 56;
    static constexpr double kLineWidth = 6;

    Element body() const;
};

}  // namespace norvane
