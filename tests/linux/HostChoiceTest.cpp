#include "platform/linux/HostChoice.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

using State = NotifierWatch::State;

TEST(HostChoice, PrefersRoomForTheLabelThenThePanelsOwnPictureThenASquareThenAStripOfOurOwn) {
    // The situations in the order of the wishes.
    EXPECT_EQ(chosenHost({.hasTray = true, .notifier = State::unknown, .wantsWidth = true}), HostKind::tray)
        << "a wide tray, while the bus is still silent";
    HostSituation narrow{
        .current = HostKind::tray, .hasTray = true, .isTrayNarrow = true, .wantsWidth = true};
    narrow.notifier = State::present;
    EXPECT_EQ(chosenHost(narrow), HostKind::notifier) << "beside a panel that shows pictures";
    narrow.notifier = State::unknown;
    EXPECT_EQ(chosenHost(narrow), HostKind::tray) << "while the bus is still silent";
    narrow.notifier = State::absent;
    EXPECT_EQ(chosenHost(narrow), HostKind::tray) << "alone";

    HostSituation icon{.hasTray = true, .notifier = State::present};
    EXPECT_EQ(chosenHost(icon), HostKind::notifier) << "where both are";
    icon.notifier = State::unknown;
    for (const HostKind current : {HostKind::none, HostKind::tray, HostKind::notifier}) {
        icon.current = current;
        EXPECT_EQ(chosenHost(icon), current) << "a silent bus changes nothing";
    }
    icon.current = HostKind::none;
    icon.hasWaited = true;
    EXPECT_EQ(chosenHost(icon), HostKind::tray) << "the bus stays silent";

    EXPECT_EQ(chosenHost({.notifier = State::present, .wantsWidth = true}), HostKind::notifier);
    EXPECT_EQ(chosenHost({.notifier = State::absent}), HostKind::none) << "no panel yet";
    EXPECT_EQ(chosenHost({.notifier = State::absent, .hasWaited = true}), HostKind::strip);
    EXPECT_EQ(chosenHost({.notifier = State::unknown, .hasWindowManager = false}), HostKind::strip);
    EXPECT_EQ(chosenHost({.hasTray = true, .wantsWidth = true, .hasWindowManager = false}), HostKind::tray);
    EXPECT_EQ(chosenHost({.current = HostKind::strip, .notifier = State::absent}), HostKind::strip)
        << "a window manager comes after the strip";
    EXPECT_EQ(chosenHost({.current = HostKind::strip, .notifier = State::present}), HostKind::notifier);
}

}  // namespace
}  // namespace norvane
