#include "platform/linux/X11Settings.h"
#include "PopoverFixture.h"

namespace norvane {
namespace {

class ConnectionTest : public PopoverFixture {};

TEST_F(ConnectionTest, TheEndOfTheServerIsToldOnceAndEverythingEndsCleanly) {
    SwatchContent label;
    const auto item = windowServer_->statusItemWithLength(54);
    item->setContent(&label);
    open();
    int ends = 0;
    connection_->setEndHandler([&] { ++ends; });
    bystander_.reset();
    xvfb_.end();
    ASSERT_TRUE(comes([&] { return ends > 0; }));
    EXPECT_FALSE(connection_->isAlive());
    // Whatever is still asked of the windows does nothing.
    content_.size = {400, 400};
    content_.change();
    label.change();
    setDark(true);
    EXPECT_FALSE(popover_->visibleFrame() || item->buttonFrame());
    EXPECT_EQ(X11Settings(*connection_).current().get(), XSettings());
    popover_->orderOut();
    show();
    turn(std::chrono::milliseconds(1));
    EXPECT_EQ(ends, 1);
}

TEST_F(ConnectionTest, EventsThatCameWithAReplyAreDeliveredAndAFailedRequestIsNotFatal) {
    X11Screen screen(*connection_);
    int notices = 0;
    const Cancellation events = screen.onDidChange([&] { ++notices; });
    bystander_->setResources("Xft.dpi: 120");
    xcb_map_window(connection_->get(), 12345);
    // The reply comes after the event, which XCB has read by then: the socket has nothing more to say.
    waitForTheServer();
    EXPECT_EQ(notices, 0);
    EXPECT_TRUE(comes([&] { return notices == 1; }));
    EXPECT_EQ(screen.scale(), 1.25);
}

TEST_F(ConnectionTest, TheVisibleFrameIsWhatPanelsLeaveOfTheSmallestMonitor) {
    X11Screen screen(*connection_);
    run("xrandr --setmonitor left 500/125x700/175+0+0 none");
    const std::tuple<Bystander::Numbers, Rect, Rect> cases[] = {
        {{0, 22, 1000, 678, 0, 22, 1000, 678}, {{0, 22}, {500, 678}}, {{0, 22}, {1000, 678}}},
        {{1, 2}, {{0, 0}, {500, 700}}, {{0, 0}, {1000, 700}}},
        {{600, 0, 400, 700}, {{0, 0}, {500, 700}}, {{600, 0}, {400, 700}}},
    };
    for (const auto& [workArea, left, right] : cases) {
        bystander_->setNumbers(bystander_->root(), "_NET_WORKAREA", workArea);
        EXPECT_TRUE(comes([&, left = left] { return screen.visibleFrame({10, 10}) == left; })) << workArea[0];
        EXPECT_TRUE(comes([&, right = right] {
            return screen.visibleFrame({700, 10}) == right;
        })) << workArea[0];
    }
}

}  // namespace
}  // namespace norvane
