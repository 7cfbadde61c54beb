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

// Colours that are fixed by number in both appearances. They are tints and large titles, never the only sign
// of anything; on a light ground they do not read as small text would have to, and they must not be used so.
TEST(Palette, FixedColoursReadOnDarkGroundsAlone) {
    struct Case {
        const char* name;
        Color color;
    };
    for (const Case& c :
         {Case{"the tint of the settings", {0, 0.85, 0.45, 1}},
          Case{"the tint of the welcome", {0, 1, 0.45, 1}}, Case{"the title", {0, 0.75, 0.4, 1}}}) {
        for (const Ground& ground : groundsOf(true))
            EXPECT_GE(contrastBetween(c.color, ground.color), kReadable)
                << c.name << " on the dark " << ground.name;
        EXPECT_LT(contrastBetween(c.color, panelTones(false).panel), kReadable)
            << c.name << ": no exemption is needed";
    }
}

TEST(Palette, OpacityMultiplies) {
    const Paint paint = Paint(Color{0, 0, 0, 0.5}).withOpacity(0.5).withOpacity(0.5);
    EXPECT_EQ(Palette::light().color(paint).alpha, 0.125);
    EXPECT_NE(Palette::light().color(Ink::primary), Palette::dark().color(Ink::primary));
}

}  // namespace
}  // namespace norvane
