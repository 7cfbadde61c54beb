#include "views/AccentTone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "drawing/Contrast.h"
#include "drawing/PanelTones.h"
#include "views/Canvas.h"
#include "views/SceneBuilder.h"
#include "views/ScreenTest.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"

namespace norvane {
namespace {

constexpr Color kWhite{1, 1, 1, 1};

// In degrees around the colour wheel.
double hueOf(const Color& c) {
    const double most = std::max({c.red, c.green, c.blue});
    const double span = most - std::min({c.red, c.green, c.blue});
    if (most == c.red) return 60 * (c.green - c.blue) / span;
    if (most == c.green) return 60 * (2 + (c.blue - c.red) / span);
    return 60 * (4 + (c.red - c.green) / span);
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
            const Color tone = accentTone(c.chosen, isDark);
            const auto where = std::string(c.name) + (isDark ? ", dark" : ", light");
            EXPECT_GE(contrastBetween(tone, kWhite), 3) << where;
            EXPECT_GE(contrastBetween(tone, panelTones(isDark).panel), 3) << where;
            EXPECT_EQ(tone == c.chosen, isDark ? c.staysInDark : c.staysInLight) << where;
            if (c.hasHue) {
                EXPECT_NEAR(hueOf(tone), hueOf(c.chosen), 0.1) << where;
            }
            EXPECT_EQ(accentTone(tone, isDark), tone) << where << ": no more than is needed";
        }
    }
    EXPECT_LT(contrastBetween(accentTone(kWhite, false), panelTones(false).panel), 3.01);
    EXPECT_LT(contrastBetween(accentTone(kWhite, true), kWhite), 3.01);
    EXPECT_LT(contrastBetween(accentTone({0, 0, 0, 1}, true), panelTones(true).panel), 3.01);
}

class AccentColorTest : public ScreenTest {
 protected:
    Element body() override {
        return vstack({},
                      shape(Outline::capsule(), {.fill = Ink::controlAccentColor})
                          .frame({.width = 10, .height = 10}),  //
                      keptCanvas([](SceneBuilder& scene, const Rect& frame) {
                          scene.fill(RoundedRect{frame}, scene.palette().color(Ink::controlAccentColor));
                      }).frame({.width = 10, .height = 10}));
    }
};

TEST_F(AccentColorTest, AnOpenScreenTakesTheColourThatIsChosenAndOursAgainAfterIt) {
    const auto fillOf = [](const DisplayItem& item) { return std::get<FillShape>(item.command).fill; };
    const auto expectAll = [&](const Color& color) {
        paint();
        ASSERT_EQ(picture_.items.size(), 2u);
        EXPECT_EQ(fillOf(picture_.items[0]), Fill(color));
        EXPECT_EQ(fillOf(std::get<DrawPicture>(picture_.items[1].command).picture->items.at(0)), Fill(color));
    };
    show();
    const Color ours = Palette::light().color(Ink::controlAccentColor);
    expectAll(ours);
    const Color red{0.8, 0.1, 0.1, 1};
    machine_.appearance.setAccentColor(red);
    expectAll(red);
    machine_.appearance.setAccentColor(std::nullopt);
    expectAll(ours);
}

}  // namespace
}  // namespace norvane
