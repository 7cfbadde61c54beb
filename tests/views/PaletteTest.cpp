#include "views/Palette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "drawing/PanelTones.h"

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

TEST(Palette, TextsAndStatusesStandOutFromWhatIsBehindThem) {
    for (const bool isDark : {false, true}) {
        const Palette& palette = Palette::of(isDark);
        const PanelTones& tones = panelTones(isDark);
        for (const Ink ink : {Ink::primary, Ink::secondary, Ink::red, Ink::orange, Ink::yellow, Ink::green,
                              Ink::teal, Ink::blue, Ink::purple}) {
            EXPECT_GE(contrast(palette.color(ink), tones.panel), 4.5)
                << (isDark ? "dark" : "light") << " panel, ink " << static_cast<int>(ink);
        }
        for (const Ink ink : {Ink::labelColor, Ink::secondaryLabelColor}) {
            EXPECT_GE(contrast(palette.color(ink), tones.strip), 4.5)
                << (isDark ? "dark" : "light") << " strip, ink " << static_cast<int>(ink);
        }
        EXPECT_GE(contrast(palette.color(Ink::controlAccentColor), palette.color(Ink::white)), 4.5);
    }
}

TEST(Palette, OpacityMultiplies) {
    const Paint paint = Paint(Color{0, 0, 0, 0.5}).withOpacity(0.5).withOpacity(0.5);
    EXPECT_EQ(Palette::light().color(paint).alpha, 0.125);
}

}  // namespace
}  // namespace norvane
