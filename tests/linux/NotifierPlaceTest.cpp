#include "platform/linux/NotifierPlace.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

constexpr Rect kMonitor{{100, 50}, {1000, 700}};
// What panels leave free at the top, and at both ends.
constexpr Rect kBelow{{100, 80}, {1000, 670}};
constexpr Rect kBetween{{100, 80}, {1000, 630}};

TEST(NotifierPlace, IsInThePanelThatWasClickedOn) {
    const auto expect = [](const char* name, const Rect& free, Point click, const Rect& wanted) {
        EXPECT_EQ(notifierFrame(click, kMonitor, free), wanted) << name;
    };
    expect("top", kBelow, {600, 60}, {{589, 50}, {22, 30}});
    expect("the last point of the panel", kBelow, {600, 79}, {{589, 50}, {22, 30}});
    expect("at its right end", kBelow, {1095, 60}, {{1078, 50}, {22, 30}});
    expect("at its left end", kBelow, {100, 50}, {{100, 50}, {22, 30}});
    expect("both, bottom clicked on", kBetween, {600, 740}, {{589, 710}, {22, 40}});
    expect("left", {{140, 50}, {960, 700}}, {120, 400}, {{109, 389}, {22, 22}});
    expect("right, at the lower end", {{100, 50}, {960, 700}}, {1090, 745}, {{1078, 728}, {22, 22}});
    expect("a panel that reserves nothing", kMonitor, {600, 55}, {{589, 50}, {22, 22}});
    expect("a free area that ends far away", {{100, 400}, {1000, 350}}, {600, 60}, {{589, 50}, {22, 22}});
}

TEST(NotifierPlace, IsAtTheRightEndOfThePanelBeforeClicks) {
    EXPECT_EQ(notifierFrameBeforeClicks(kMonitor, kBelow), (Rect{{1078, 50}, {22, 30}}));
    EXPECT_EQ(notifierFrameBeforeClicks(kMonitor, kBetween), (Rect{{1078, 50}, {22, 30}}));
    EXPECT_EQ(notifierFrameBeforeClicks(kMonitor, {{100, 50}, {1000, 660}}), (Rect{{1078, 710}, {22, 40}}));
    EXPECT_EQ(notifierFrameBeforeClicks(kMonitor, kMonitor), (Rect{{1078, 50}, {22, 22}}));
}

}  // namespace
}  // namespace norvane
