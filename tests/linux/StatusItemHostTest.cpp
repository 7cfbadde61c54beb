#include <gtest/gtest.h>

#include "platform/linux/HostChoice.h"
#include "platform/linux/NotifierPlace.h"

namespace norvane {
namespace {

using State = NotifierWatch::State;

TEST(HostChoice, PrefersRoomForTheLabelThenThePanelsOwnPictureThenASquareThenAStripOfOurOwn) {
    constexpr HostKind none = HostKind::none;
    constexpr HostKind tray = HostKind::tray;
    constexpr HostKind panel = HostKind::notifier;
    constexpr HostKind strip = HostKind::strip;
    struct Case {
        const char* name;
        // In order: current, has a tray, a narrow one, the notifier, wants width, window manager, has waited.
        HostSituation situation;
        HostKind want;
    };
    for (const auto& [name, situation, want] : std::vector<Case>{
             {"a wide tray, a silent bus", {none, true, false, State::unknown, true, true, false}, tray},
             {"a narrow one beside a panel", {tray, true, true, State::present, true, true, false}, panel},
             {"a narrow one, a silent bus", {tray, true, true, State::unknown, true, true, false}, tray},
             {"an icon where both are", {none, true, false, State::present, false, true, false}, panel},
             {"a silent bus begins nothing", {none, true, false, State::unknown, false, true, false}, none},
             {"nor ends a tray", {tray, true, false, State::unknown, false, true, false}, tray},
             {"nor a picture", {panel, true, false, State::unknown, false, true, false}, panel},
             {"it stays silent", {none, true, false, State::unknown, false, true, true}, tray},
             {"no panel yet", {none, false, false, State::absent, false, true, false}, none},
             {"no panel at all", {none, false, false, State::absent, false, true, true}, strip},
             {"no window manager", {none, false, false, State::unknown, false, false, false}, strip},
             {"one that comes after the strip",
              {strip, false, false, State::absent, false, true, false},
              strip},
             {"a panel that does", {strip, false, false, State::present, false, true, false}, panel},
         }) {
        EXPECT_EQ(chosenHost(situation), want) << name;
    }
}

TEST(NotifierPlace, IsInThePanelThatWasClickedOnAndBeforeClicksAtItsRightEnd) {
    constexpr Rect kMonitor{{100, 50}, {1000, 700}};
    // What panels leave free at the top, and at both ends.
    constexpr Rect kBelow{{100, 80}, {1000, 670}};
    constexpr Rect kBetween{{100, 80}, {1000, 630}};
    EXPECT_EQ(notifierFrame({1095, 79}, kMonitor, kBelow), (Rect{{1078, 50}, {22, 30}})) << "its last point";
    EXPECT_EQ(notifierFrame({100, 740}, kMonitor, kBetween), (Rect{{100, 710}, {22, 40}})) << "at the bottom";
    EXPECT_EQ(notifierFrame({1090, 745}, kMonitor, {{100, 50}, {960, 700}}), (Rect{{1078, 728}, {22, 22}}))
        << "right";
    EXPECT_EQ(notifierFrame({600, 60}, kMonitor, {{100, 400}, {1000, 350}}), (Rect{{589, 50}, {22, 22}}))
        << "none there";
    EXPECT_EQ(notifierFrameBeforeClicks(kMonitor, kBetween), (Rect{{1078, 50}, {22, 30}}));
    EXPECT_EQ(notifierFrameBeforeClicks(kMonitor, {{100, 50}, {1000, 660}}), (Rect{{1078, 710}, {22, 40}}));
    EXPECT_EQ(notifierFrameBeforeClicks(kMonitor, kMonitor), (Rect{{1078, 50}, {22, 22}}));
}

}  // namespace
}  // namespace norvane
