#include <algorithm>

#include "drawing/Contrast.h"
#include "drawing/PanelTones.h"
#include "views/AccentTone.h"
#include "views/Canvas.h"
#include "views/SceneBuilder.h"
#include "views/ScreenTest.h"
#include "views/ShapeElement.h"

namespace norvane {
namespace {

constexpr Color kWhite{1, 1, 1, 1};

// In degrees around the colour wheel, for a colour that is most of all red or blue.
double hueOf(const Color& c) {
    const double most = std::max({c.red, c.green, c.blue});
    const double span = most - std::min({c.red, c.green, c.blue});
    return most == c.red ? 60 * (c.green - c.blue) / span : 60 * (4 + (c.red - c.green) / span);
}

TEST(AccentTone, AnyColourCarriesWhiteTextAndStandsOutAndOneThatDoesStaysAsItIs) {
    struct Case {
        const char* name;
        Color chosen;
        bool staysInLight, staysInDark;
        bool hasHue = true;
    };
    for (const Case& c :
         {Case{"a common blue", {0.208, 0.518, 0.894, 1}, true, true},
          Case{"sunny yellow", {1, 0.9, 0.1, 1}, false, false}, Case{"navy", {0, 0, 0.4, 1}, true, false},
          Case{"white", kWhite, false, false, false}, Case{"black", {0, 0, 0, 1}, true, false, false}}) {
        for (const bool isDark : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (isDark ? ", dark" : ", light"));
            const Color tone = accentTone(c.chosen, isDark);
            const bool stays = tone == c.chosen;
            const double least =
                std::min(contrastBetween(tone, kWhite), contrastBetween(tone, panelTones(isDark).panel));
            EXPECT_GE(least, 3);
            EXPECT_EQ(stays, isDark ? c.staysInDark : c.staysInLight);
            EXPECT_LT(stays ? 0 : least, 3.01) << "no more than is needed";
            EXPECT_NEAR(c.hasHue ? hueOf(tone) - hueOf(c.chosen) : 0, 0, 0.1);
        }
    }
}

TEST(Palette, TextsAndStatusesStandOutFromWhatIsBehindThem) {
    for (const bool isDark : {false, true}) {
        const Palette& palette = Palette::of(isDark);
        const auto expectReadable = [&](std::initializer_list<Ink> inks, const Color& ground) {
            for (const Ink ink : inks)
                EXPECT_GE(contrastBetween(palette.color(ink), ground), 4.5)
                    << (isDark ? "dark, " : "light, ") << static_cast<int>(ink);
        };
        const Color panel = panelTones(isDark).panel;
        const Color card = palette.color(Paint(Ink::controlBackgroundColor).withOpacity(0.4));
        for (const Color& ground : {panel, laidUpon(card, panel)})
            expectReadable({Ink::primary, Ink::secondary, Ink::red, Ink::orange, Ink::yellow, Ink::green,
                            Ink::teal, Ink::blue, Ink::purple, Ink::link},
                           ground);
        expectReadable({Ink::labelColor, Ink::secondaryLabelColor}, panelTones(isDark).strip);
        expectReadable({Ink::controlAccentColor}, palette.color(Ink::white));
    }
}

class AccentColorTest : public ScreenTest {
 protected:
    Element body() override {
        return keptCanvas([](SceneBuilder& scene, const Rect& frame) {
                   scene.fill(RoundedRect{frame}, scene.palette().color(Ink::controlAccentColor));
               })
            .overlay(shape(Outline::capsule(), {.fill = Ink::controlAccentColor}));
    }
};

TEST_F(AccentColorTest, AnOpenScreenTakesTheColourThatIsChosenAndOursAgainAfterIt) {
    view_.appear();
    for (const std::optional<Color> chosen : {std::optional(Color{0.8, 0.1, 0.1, 1}), {}}) {
        machine_.appearance.setAccentColor(chosen);
        paint(Size{10, 10});
        const Fill want = chosen.value_or(Palette::light().color(Ink::controlAccentColor));
        ASSERT_EQ(picture_.items.size(), 2U);
        const auto& kept = std::get<DrawPicture>(picture_.items[0].command).picture->items.at(0);
        EXPECT_EQ(std::get<FillShape>(kept.command).fill, want);
        EXPECT_EQ(std::get<FillShape>(picture_.items[1].command).fill, want);
    }
}

}  // namespace
}  // namespace norvane
