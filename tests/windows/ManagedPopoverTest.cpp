#include <algorithm>

#include "DesktopTest.h"
#include "RecordingObserver.h"

namespace norvane {
namespace {

class ManagedPopoverTest : public DesktopTest {
 protected:
    void SetUp() override {
        DesktopTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        EXPECT_FALSE(connection_->isXWayland() || connection_->hasManagedPopovers()) << "not asked for";
        connect({.managedPopovers = true});
        content_.swatches = {{{{20, 20}, {40, 40}}, kGreen}};
        popover_ = windowServer_->makePopoverWindow(content_, observer_);
    }
    void TearDown() override {
        popover_.reset();
        DesktopTest::TearDown();
    }

    void open() {
        popover_->place(anchorAbove(400, 100));
        popover_->orderFront();
        popover_->makeKeyWindow();
        ASSERT_TRUE(comes([&] { return bystander_->pixelAt(340, 140) == kGreenPixel; }));
        ASSERT_TRUE(comes([&] {
            window_ = find();
            return window_ != XCB_NONE && bystander_->focused() == window_;
        }));
    }
    // The popover's window, in a window manager's frame or not.
    xcb_window_t find() const {
        for (const xcb_window_t top : bystander_->windows()) {
            if (bystander_->text(top, "_NET_WM_NAME") == "Norvane") return top;
            const X11Reply<xcb_query_tree_reply_t> tree(
                xcb_query_tree_reply(bystander_->get(), xcb_query_tree(bystander_->get(), top), nullptr));
            if (!tree) continue;
            const xcb_window_t* const children = xcb_query_tree_children(tree.get());
            for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
                if (bystander_->text(children[i], "_NET_WM_NAME") == "Norvane") return children[i];
            }
        }
        return XCB_NONE;
    }
    bool sawPressAt(Point at) const {
        const std::vector<PointerEvent>& events = content_.pointerEvents;
        return std::count(events.begin(), events.end(), PointerEvent{PointerEvent::Kind::press, at}) == 1;
    }
    // What window managers send whose button closes a window.
    void askToClose() const {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window_;
        message.type = bystander_->atom("WM_PROTOCOLS");
        message.data.data32[0] = bystander_->atom("WM_DELETE_WINDOW");
        xcb_send_event(bystander_->get(), 0, window_, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&message));
        bystander_->sync();
    }

    SwatchContent content_;
    RecordingObserver observer_;
    std::unique_ptr<PopoverWindow> popover_;
    xcb_window_t window_ = XCB_NONE;
};

TEST_F(ManagedPopoverTest, IsADialogWithoutAFrameThatAsksForItsPlace) {
    open();
    using Numbers = std::vector<std::uint32_t>;
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        bystander_->get(), xcb_get_window_attributes(bystander_->get(), window_), nullptr));
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->override_redirect, 0);
    EXPECT_EQ(bystander_->numbers(window_, "_NET_WM_WINDOW_TYPE"),
              Numbers{bystander_->atom("_NET_WM_WINDOW_TYPE_DIALOG")});
    EXPECT_EQ(bystander_->numbers(window_, "_MOTIF_WM_HINTS"), (Numbers{2, 0, 0, 0, 0}));
    const Numbers hints = bystander_->numbers(window_, "WM_NORMAL_HINTS");
    ASSERT_GE(hints.size(), 5u);
    constexpr std::uint32_t kUsersAndOurPlace = 1 | 4;
    EXPECT_EQ(hints[0] & kUsersAndOurPlace, kUsersAndOurPlace);
    EXPECT_EQ((Numbers{hints[1], hints[2], hints[3], hints[4]}), (Numbers{300, 100, 200, 120}));
    EXPECT_EQ(bystander_->numbers(window_, "WM_HINTS")[1], 1u) << "takes the keyboard";
    const Numbers states = bystander_->numbers(window_, "_NET_WM_STATE");
    for (const char* state : {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"}) {
        EXPECT_NE(std::find(states.begin(), states.end(), bystander_->atom(state)), states.end()) << state;
    }
}

TEST_F(ManagedPopoverTest, IsDismissedByTheKeyboardThatGoesByEscapeAndByBeingAskedTo) {
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    open();
    type("Escape");
    EXPECT_TRUE(comes([&] { return observer_.escapes == 1; }));
    askToClose();
    EXPECT_TRUE(comes([&] { return observer_.escapes == 2; }));
    bystander_->focus(other);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
    popover_->orderOut();
    waitForTheServer();
    EXPECT_EQ(bystander_->focused(), other) << "who has chosen it keeps it";
    open();
    observer_.then = [this] { popover_.reset(); };
    askToClose();
    EXPECT_TRUE(comes([&] { return popover_ == nullptr; }));
}

TEST_F(ManagedPopoverTest, WhereverItIsPutThePointerIsToldInItsPoints) {
    open();
    const std::uint32_t elsewhere[] = {600, 400};
    xcb_configure_window(bystander_->get(), window_, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, elsewhere);
    bystander_->sync();
    click(610, 415);
    EXPECT_TRUE(comes([&] { return sawPressAt({10, 15}); }));
    EXPECT_EQ(observer_.pressesOutside, 0);
    // It stays there when it grows.
    content_.size = {200, 200};
    content_.change();
    EXPECT_TRUE(comes([&] { return bystander_->windowAt({600, 400, 200, 200}).has_value(); }));
    click(620, 590);
    EXPECT_TRUE(comes([&] { return sawPressAt({20, 190}); }));
    click(310, 115);  // where it was meant to be
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
}

TEST_F(ManagedPopoverTest, WorksUnderAWindowManager) {
    if (runOn("", {"sh", "-c", "command -v openbox"}) != 0) GTEST_SKIP() << "openbox is not installed";
    // It ends with its display. While it starts it loses requests: it says itself when it has.
    ASSERT_EQ(
        runOn(xvfb_.display(), {"sh", "-c", "openbox --sm-disable --startup 'xsetroot -name started' &"}), 0);
    ASSERT_TRUE(comes([&] { return bystander_->text(bystander_->root(), "WM_NAME") == "started"; }));
    for (int times = 1; times <= 2; ++times) {
        open();
        click(310, 115);
        EXPECT_TRUE(comes([&] { return sawPressAt({10, 15}); }));
        content_.pointerEvents.clear();
        type("Escape");
        EXPECT_TRUE(comes([&] { return observer_.escapes == times; }));
        EXPECT_EQ(observer_.pressesOutside, 0);
        EXPECT_EQ(observer_.focusLosses, 0);
        popover_->orderOut();
        EXPECT_TRUE(comes([&] { return find() == XCB_NONE; }));
    }
    open();
    ASSERT_TRUE(comes([&] { return bystander_->focused() == window_; }));
    settle();
    bystander_->focus(bystander_->open({600, 300, 100, 100}));
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
}

}  // namespace
}  // namespace norvane
