#include "PopoverFixture.h"

namespace norvane {
namespace {

TEST(X11ConnectionWithoutAServer, IsNoConnection) {
    EXPECT_EQ(X11Connection::open(":7654321"), nullptr);
    EXPECT_EQ(X11Connection::open("no display at all"), nullptr);
}

class ConnectionTest : public PopoverFixture {};

TEST_F(ConnectionTest, TheEndOfTheServerIsToldOnceAndEverythingEndsCleanly) {
    SwatchContent label;
    auto item = windowServer_->statusItemWithLength(54);
    item->setContent(&label);
    open();
    ASSERT_TRUE(comes([&] { return bystander_->windows().size() == 2; }));
    int ends = 0;
    connection_->setEndHandler([&] { ++ends; });
    bystander_.reset();
    xvfb_.kill();
    ASSERT_TRUE(comes([&] { return ends > 0; }));
    EXPECT_FALSE(connection_->isAlive());
    // Whatever is still asked of the windows does nothing.
    content_.size = {400, 400};
    content_.change();
    label.change();
    appearance_.setDark(true);
    EXPECT_FALSE(popover_->visibleFrame());
    EXPECT_FALSE(item->buttonFrame());
    popover_->orderOut();
    show();
    turn(std::chrono::milliseconds(1));
    EXPECT_EQ(ends, 1);
}

TEST_F(ConnectionTest, EventsThatCameWithAReplyAreDeliveredWithoutAnyMore) {
    int notices = 0;
    const Cancellation events =
        connection_->onEvent(connection_->root(), [&](const xcb_generic_event_t& event) {
            if ((event.response_type & 0x7F) == XCB_PROPERTY_NOTIFY) ++notices;
        });
    bystander_->setResources("Xft.dpi: 96");
    // The reply comes after the event, which XCB has read by then: the socket has
    // nothing more to say.
    waitForTheServer();
    EXPECT_EQ(notices, 0);
    EXPECT_TRUE(comes([&] { return notices == 1; }));
}

TEST_F(ConnectionTest, AFailedRequestIsNotFatal) {
    xcb_map_window(connection_->get(), 12345);
    const X11Reply<xcb_get_geometry_reply_t> none(
        xcb_get_geometry_reply(connection_->get(), xcb_get_geometry(connection_->get(), 12345), nullptr));
    EXPECT_FALSE(none);
    EXPECT_TRUE(connection_->isAlive());
    int changes = 0;
    X11Screen screen(*connection_);
    const Cancellation watch = screen.onDidChange([&] { ++changes; });
    bystander_->setResources("Xft.dpi: 120");
    ASSERT_TRUE(comes([&] { return changes == 1; }));
    EXPECT_EQ(screen.scale(), 1.25);
}

TEST_F(ConnectionTest, TheVisibleFrameIsWhatPanelsLeaveOfTheSmallestMonitor) {
    X11Screen screen(*connection_);
    const auto comesToBe = [&](const Rect& wanted) {
        return comes([&] { return screen.visibleFrame({10, 10}) == wanted; });
    };
    ASSERT_EQ(runOn(xvfb_.display(), {"xrandr", "--setmonitor", "left", "500/125x700/175+0+0", "none"}), 0);
    ASSERT_TRUE(comesToBe({{0, 0}, {500, 700}}));
    EXPECT_EQ(screen.visibleFrame({600, 10}), (Rect{{0, 0}, {1000, 700}}));
    const auto setWorkArea = [&](const std::vector<std::uint32_t>& values) {
        bystander_->setNumbers(bystander_->root(), "_NET_WORKAREA", values);
    };
    setWorkArea({0, 22, 1000, 678, 0, 22, 1000, 678});
    EXPECT_TRUE(comesToBe({{0, 22}, {500, 678}}));
    setWorkArea({1, 2});  // no area at all
    EXPECT_TRUE(comesToBe({{0, 0}, {500, 700}}));
    setWorkArea({600, 0, 400, 700});  // of another monitor
    EXPECT_TRUE(comes([&] { return screen.visibleFrame({700, 10}) == Rect{{600, 0}, {400, 700}}; }));
    EXPECT_EQ(screen.visibleFrame({10, 10}), (Rect{{0, 0}, {500, 700}}));
}

TEST_F(ConnectionTest, TheScreenIsDarkBehindAScreenSaver) {
    X11ScreenLight light(*connection_, clock_, mainQueue_);
    EXPECT_TRUE(light.isLit());
    int returns = 0;
    Cancellation watch = light.onLit([&] { ++returns; });
    ASSERT_EQ(runOn(xvfb_.display(), {"xset", "s", "activate"}), 0);
    EXPECT_TRUE(comes([&] { return !light.isLit(); }));
    EXPECT_FALSE(X11ScreenLight(*connection_, clock_, mainQueue_).isLit()) << "one that begins in the dark";
    EXPECT_EQ(returns, 0);
    ASSERT_EQ(runOn(xvfb_.display(), {"xset", "s", "reset"}), 0);
    EXPECT_TRUE(comes([&] { return returns == 1; }));
    EXPECT_TRUE(light.isLit());
}

}  // namespace
}  // namespace norvane
