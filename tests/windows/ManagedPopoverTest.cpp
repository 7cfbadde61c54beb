#include "PopoverFixture.h"

namespace norvane {
namespace {

class ManagedPopoverTest : public PopoverFixture {
 protected:
    void begin() override {
        EXPECT_FALSE(connection_->isXWayland() || connection_->hasManagedPopovers()) << "not asked for";
        makeOn({.managedPopovers = true});
    }
    // In a window manager's frame or not.
    xcb_window_t window() const override {
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
    // What window managers send whose button closes a window.
    void askToClose() const {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window();
        message.type = bystander_->atom("WM_PROTOCOLS");
        message.data.data32[0] = bystander_->atom("WM_DELETE_WINDOW");
        xcb_send_event(bystander_->get(), 0, message.window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&message));
        bystander_->sync();
    }
};

TEST_F(ManagedPopoverTest, IsADialogWithoutAFrameThatAsksForItsPlace) {
    open();
    using Numbers = std::vector<std::uint32_t>;
    EXPECT_FALSE(bystander_->isUnmanaged(window()));
    EXPECT_TRUE(bystander_->hasAtom(window(), "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DIALOG"));
    EXPECT_EQ(bystander_->numbers(window(), "_MOTIF_WM_HINTS"), (Numbers{2, 0, 0, 0, 0}));
    const Numbers hints = bystander_->numbers(window(), "WM_NORMAL_HINTS");
    ASSERT_GE(hints.size(), 5u);
    constexpr std::uint32_t kUsersAndOurPlace = 1 | 4;
    EXPECT_EQ(hints[0] & kUsersAndOurPlace, kUsersAndOurPlace);
    EXPECT_EQ((Numbers{hints[1], hints[2], hints[3], hints[4]}), (Numbers{300, 100, 200, 120}));
    EXPECT_EQ(bystander_->numbers(window(), "WM_HINTS")[1], 1u) << "takes the keyboard";
    EXPECT_TRUE(bystander_->hasAtom(window(), "_NET_WM_STATE", "_NET_WM_STATE_SKIP_TASKBAR"));
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
    xcb_configure_window(bystander_->get(), window(), XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, elsewhere);
    bystander_->sync();
    click(610, 415);
    EXPECT_TRUE(comesToTell({PointerEvent::Kind::press, {10, 15}}));
    EXPECT_EQ(observer_.pressesOutside, 0);
    content_.size = {200, 200};
    content_.change();
    EXPECT_TRUE(comesToBeAt({600, 400, 200, 200})) << "it stays there when it grows";
    click(620, 590);
    EXPECT_TRUE(comesToTell({PointerEvent::Kind::press, {20, 190}}));
    click(310, 115);  // where it was meant to be
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
}

TEST_F(ManagedPopoverTest, WorksUnderAWindowManager) {
    if (runOn("", {"sh", "-c", "command -v openbox"}) != 0) GTEST_SKIP() << "openbox is not installed";
    // It ends with its display. While it starts it loses requests: it says itself
    // when it has.
    ASSERT_EQ(
        runOn(xvfb_.display(), {"sh", "-c", "openbox --sm-disable --startup 'xsetroot -name started' &"}), 0);
    ASSERT_TRUE(comes([&] { return bystander_->text(bystander_->root(), "WM_NAME") == "started"; }));
    for (int times = 1; times <= 2; ++times) {
        open();
        click(310, 115);
        EXPECT_TRUE(comesToTell({PointerEvent::Kind::press, {10, 15}}));
        content_.pointerEvents.clear();
        type("Escape");
        EXPECT_TRUE(comes([&] { return observer_.escapes == times; }));
        EXPECT_EQ(observer_.pressesOutside + observer_.focusLosses, 0);
        popover_->orderOut();
        EXPECT_TRUE(comes([&] { return window() == XCB_NONE; }));
    }
    open();
    settle();
    bystander_->focus(bystander_->open({600, 300, 100, 100}));
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
}

}  // namespace
}  // namespace norvane
