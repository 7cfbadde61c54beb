#include "views/Palette.h"

#include <gtest/gtest.h>

#include <string>

#include "drawing/Contrast.h"
#include "drawing/PanelTones.h"

namespace norvane {
namespace {

constexpr double kReadable = 4.5;

// What the contents of the panel stand upon: the panel itself, and a card on it.
struct Ground {
    const char* name;
    Color color;
};
std::vector<Ground> groundsOf(bool isDark) {
    const Color panel = panelTones(isDark).panel;
    const Color card = Palette::of(isDark).color(Paint(Ink::controlBackgroundColor).withOpacity(0.4));
    return {{"panel", panel}, {"card", laidUpon(card, panel)}};
}

TEST(Palette, TextsAndStatusesStandOutFromWhatIsBehindThem) {
    for (const bool isDark : {false, true}) {
        const Palette& palette = Palette::of(isDark);
        const std::string appearance = isDark ? "dark" : "light";
        for (const Ink ink : {Ink::primary, Ink::secondary, Ink::red, Ink::orange, Ink::yellow, Ink::green,
                              Ink::teal, Ink::blue, Ink::purple, Ink::link}) {
            for (const Ground& ground : groundsOf(isDark)) {
                EXPECT_GE(contrastBetween(palette.color(ink), ground.color), kReadable)
                    << appearance << ' ' << ground.name << ", ink " << static_cast<int>(ink);
            }
        }
        for (const Ink ink : {Ink::labelColor, Ink::secondaryLabelColor}) {
            EXPECT_GE(contrastBetween(palette.color(ink), panelTones(isDark).strip), kReadable)
                << appearance << " strip, ink " << static_cast<int>(ink);
        }
        EXPECT_GE(contrastBetween(palette.color(Ink::controlAccentColor), palette.color(Ink::white)),
                  kReadable);
    }
}

}  // namespace
}  // namespace norvane
