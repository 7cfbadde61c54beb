#include "platform/linux/HostChoice.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

using State = NotifierWatch::State;

TEST(HostChoice, PrefersRoomForTheLabelThenThePanelsOwnPictureThenASquareThenAStripOfOurOwn) {
    struct Case {
        const char* what;
        HostSituation situation;
        HostKind want;
    };
    const Case cases[] = {
        {"a wide tray", {.hasTray = true, .notifier = State::present, .wantsWidth = true}, HostKind::tray},
        {"a tray, while the bus is still silent",
         {.hasTray = true, .notifier = State::unknown, .wantsWidth = true},
         HostKind::tray},
        {"a narrow tray beside a panel that shows pictures",
         {.hasTray = true, .isTrayNarrow = true, .notifier = State::present, .wantsWidth = true},
         HostKind::notifier},
        {"a narrow tray, while the bus is still silent",
         {.current = HostKind::tray,
          .hasTray = true,
          .isTrayNarrow = true,
          .notifier = State::unknown,
          .wantsWidth = true},
         HostKind::tray},
        {"a narrow tray alone",
         {.hasTray = true, .isTrayNarrow = true, .notifier = State::absent, .wantsWidth = true},
         HostKind::tray},
        {"an icon where both are", {.hasTray = true, .notifier = State::present}, HostKind::notifier},
        {"an icon, while the bus is still silent",
         {.hasTray = true, .notifier = State::unknown},
         HostKind::none},
        {"an icon in a tray, and a bus that comes back",
         {.current = HostKind::tray, .hasTray = true, .notifier = State::unknown},
         HostKind::tray},
        {"a picture in a panel, and a bus that comes back beside a tray",
         {.current = HostKind::notifier, .hasTray = true, .notifier = State::unknown},
         HostKind::notifier},
        {"an icon, and the bus stays silent",
         {.hasTray = true, .notifier = State::unknown, .hasWaited = true},
         HostKind::tray},
        {"pictures alone", {.notifier = State::present, .wantsWidth = true}, HostKind::notifier},
        {"no panel yet", {.notifier = State::absent}, HostKind::none},
        {"no panel for long", {.notifier = State::absent, .hasWaited = true}, HostKind::strip},
        {"no window manager", {.notifier = State::unknown, .hasWindowManager = false}, HostKind::strip},
        {"a tray without a window manager",
         {.hasTray = true, .wantsWidth = true, .hasWindowManager = false},
         HostKind::tray},
        {"a window manager comes after the strip",
         {.current = HostKind::strip, .notifier = State::absent},
         HostKind::strip},
        {"a panel comes beside the strip",
         {.current = HostKind::strip, .notifier = State::present},
         HostKind::notifier},
    };
    for (const Case& c : cases)
        EXPECT_EQ(chosenHost(c.situation), c.want) << c.what;
}

}  // namespace
}  // namespace norvane
