#include "platform/linux/NotifierPlace.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

constexpr Rect kMonitor{{100, 50}, {1000, 700}};

TEST(NotifierPlace, IsInThePanelThatWasClickedOn) {
    const struct {
        const char* name;
        Rect free;
        Point click;
        Rect wanted;
    } cases[] = {
        {"top", {{100, 80}, {1000, 670}}, {600, 60}, {{589, 50}, {22, 30}}},
        {"the last point of the panel", {{100, 80}, {1000, 670}}, {600, 79}, {{589, 50}, {22, 30}}},
        {"at its right end", {{100, 80}, {1000, 670}}, {1095, 60}, {{1078, 50}, {22, 30}}},
        {"at its left end", {{100, 80}, {1000, 670}}, {100, 50}, {{100, 50}, {22, 30}}},
        {"bottom", {{100, 50}, {1000, 660}}, {600, 710}, {{589, 710}, {22, 40}}},
        {"both, bottom clicked on", {{100, 80}, {1000, 630}}, {600, 740}, {{589, 710}, {22, 40}}},
        {"left", {{140, 50}, {960, 700}}, {120, 400}, {{109, 389}, {22, 22}}},
        {"right, at the lower end", {{100, 50}, {960, 700}}, {1090, 745}, {{1078, 728}, {22, 22}}},
        {"a panel that reserves nothing", kMonitor, {600, 55}, {{589, 50}, {22, 22}}},
        {"a free area that ends far away", {{100, 400}, {1000, 350}}, {600, 60}, {{589, 50}, {22, 22}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(notifierFrame(c.click, kMonitor, c.free), c.wanted) << c.name;
}

TEST(NotifierPlace, IsAtTheRightEndOfThePanelBeforeClicks) {
    const struct {
        const char* name;
        Rect free;
        Rect wanted;
    } cases[] = {
        {"top", {{100, 80}, {1000, 670}}, {{1078, 50}, {22, 30}}},
        {"bottom", {{100, 50}, {1000, 660}}, {{1078, 710}, {22, 40}}},
        {"both", {{100, 80}, {1000, 630}}, {{1078, 50}, {22, 30}}},
        {"none", kMonitor, {{1078, 50}, {22, 22}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(notifierFrameBeforeClicks(kMonitor, c.free), c.wanted) << c.name;
}

}  // namespace
}  // namespace norvane
