#include "views/Palette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace norvane {
namespace {

// Relative luminance and contrast as the Web Content Accessibility Guidelines 2.1 define them.
double luminance(const Color& c) {
    const auto linear = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(c.red) + 0.7152 * linear(c.green) + 0.0722 * linear(c.blue);
}
double contrast(const Color& a, const Color& b) {
    const double light = std::max(luminance(a), luminance(b));
    const double dark = std::min(luminance(a), luminance(b));
    return (light + 0.05) / (dark + 0.05);
}

TEST(Palette, TextsAndStatusesStandOutFromThePanel) {
    struct Panel {
        const char* name;
        const Palette& palette;
        Color background;
    };
    for (const Panel& panel : {Panel{"light", Palette::light(), {0.965, 0.969, 0.976, 1}},
                               Panel{"dark", Palette::dark(), {0.125, 0.133, 0.149, 1}}}) {
        for (const Ink ink :
             {Ink::primary, Ink::secondary, Ink::labelColor, Ink::secondaryLabelColor, Ink::red, Ink::orange,
              Ink::yellow, Ink::green, Ink::teal, Ink::blue, Ink::purple}) {
            EXPECT_GE(contrast(panel.palette.color(ink), panel.background), 4.5)
                << panel.name << " ink " << static_cast<int>(ink);
        }
        EXPECT_GE(contrast(panel.palette.color(Ink::controlAccentColor), panel.palette.color(Ink::white)),
                  4.5)
            << panel.name;
    }
}

TEST(Palette, OpacityMultiplies) {
    const Paint paint = Paint(Color{0, 0, 0, 0.5}).withOpacity(0.5).withOpacity(0.5);
    EXPECT_EQ(Palette::light().color(paint).alpha, 0.125);
}

}  // namespace
}  // namespace norvane
