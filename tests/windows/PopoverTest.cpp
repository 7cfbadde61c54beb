#include "PopoverFixture.h"

namespace norvane {
namespace {

using Kind = PointerEvent::Kind;

class PopoverTest : public PopoverFixture {};

TEST_F(PopoverTest, IsPlacedFirstAndShownPaintedAtItsPlace) {
    popover_->place(anchorAbove(400, 100));
    popover_->setFrame({{280, 90}, {1, 1}});
    EXPECT_EQ(popover_->frame(), (Rect{{280, 100}, {200, 120}})) << "it moves to and fro alone";
    settle();
    EXPECT_TRUE(bystander_->windows().empty());
    const auto back = bystander_->open({200, 50, 500, 300});
    popover_->orderFront();
    waitForTheServer();
    EXPECT_TRUE(shows(280 + 40, 100 + 40, kGreenPixel)) << "painted without a turn of the main loop";
    EXPECT_TRUE(shows(280, 100, kRedPixel) && shows(479, 219, kRedPixel)) << "round without a compositor";
    EXPECT_FALSE(shows(292, 100, kRedPixel) || shows(280, 112, kRedPixel));
    content_.size = {100, 80};
    content_.change();
    ASSERT_TRUE(comesToBeAt({280, 100, 100, 80})) << "it shrinks to its corner";
    popover_->place(anchorAbove(600, 100));
    ASSERT_TRUE(comesToBeAt({550, 100, 100, 80})) << "without closing";
    popover_->orderOut();
    waitForTheServer();
    EXPECT_EQ(bystander_->windows(), std::vector{back});
}

TEST_F(PopoverTest, EscapeIsTheContentsUnlessItHasNoUseForIt) {
    open();
    type("Escape");
    ASSERT_TRUE(comes([&] { return observer_.escapes == 1; }));
    content_.usesKeys = true;
    content_.keyEvents.clear();
    type(
        "Tab shift+Tab space Return KP_Enter Up Down Left Right Prior Next Home End KP_Home x control+Escape "
        "Escape");
    std::vector<KeyEvent> wanted;
    using enum KeyEvent::Key;
    for (const auto key : {tab, backTab, space, returnKey, returnKey, up, down, left, right, pageUp, pageDown,
                           home, end, home, escape})
        wanted.push_back({key});
    EXPECT_TRUE(comes([&] { return content_.keyEvents.size() >= wanted.size(); }));
    EXPECT_EQ(content_.keyEvents, wanted);
    EXPECT_EQ(observer_.escapes, 1);
}

TEST_F(PopoverTest, APressElsewhereIsToldAndReachesItsTargetButOurOwnWindowsAreNotElsewhere) {
    bystander_->open({600, 500, 100, 100});
    open();
    click(650, 550);
    ASSERT_TRUE(comes([&] { return observer_.pressesOutside == 1 && bystander_->presses() == 1; }));
    click(50, 650, 5);  // a wheel's turn is no press
    click(50, 650, 3);  // on nothing but the root
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 2; }));
    const auto item = windowServer_->statusItemWithLength(54);
    int clicks = 0;
    item->setAction([&] { ++clicks; });
    ASSERT_TRUE(comesToBeAt(kStrip));
    click(Xvfb::kWidth - 20, 10);
    ASSERT_TRUE(comes([&] { return clicks == 1; }));
    SwatchContent secondContent;
    RecordingObserver secondObserver;
    const auto second = windowServer_->makePopoverWindow(secondContent, secondObserver);
    second->place(anchorAbove(700, 300));
    second->orderFront();
    second->makeKeyWindow();
    ASSERT_TRUE(comes([&] { return bystander_->focused() == bystander_->windowAt({600, 300, 200, 120}); }));
    click(320, 110);
    ASSERT_TRUE(comesToTell({Kind::release, {20, 10}}));
    EXPECT_EQ(observer_.pressesOutside + secondObserver.pressesOutside, 2);
    EXPECT_EQ(observer_.focusLosses, 0) << "the keyboard went to a window of ours";
    click(50, 650);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 3 && secondObserver.pressesOutside == 1; }));
}

TEST_F(PopoverTest, ThePointerIsToldInTheContentsPoints) {
    bystander_->setResources("Xft.dpi: 192");
    ASSERT_TRUE(comes([&] { return popover_->visibleFrame()->size.width == Xvfb::kWidth / 2; }));
    show(anchorAbove(200, 50));
    for (const int button : {1, 5, 4, 7, 6})
        click(220, 130, button);
    moveTo(900, 600);
    ASSERT_TRUE(comesToTell({Kind::leave, {}}));
    EXPECT_EQ(content_.pointerEvents.front().kind, Kind::move);
    EXPECT_EQ(told({Kind::press, {10, 15}}) + told({Kind::release, {10, 15}}), 2);
    for (const Point notch : {Point{0, 40}, Point{0, -40}, Point{40, 0}, Point{-40, 0}})
        EXPECT_EQ(told({Kind::scroll, {10, 15}, notch}), 1) << notch.x << ", " << notch.y;
}

TEST_F(PopoverTest, TheKeyboardGoesBackToWhereItWasAndItsLossIsToldOnce) {
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    bystander_->focus(other);
    open();
    popover_->orderOut();
    EXPECT_TRUE(comes([&] { return bystander_->focused() == other; }));
    open();
    moveTo(650, 350);
    bystander_->focus(other);  // as window managers do that focus what the pointer is over
    settle();
    moveTo(310, 115);
    EXPECT_TRUE(comes([&] { return bystander_->focused() == window(); })) << "it comes back with the pointer";
    EXPECT_EQ(observer_.focusLosses, 0) << "it was given, or merely followed the pointer";
    bystander_->focus(other);  // the pointer is elsewhere: a choice
    ASSERT_TRUE(comes([&] { return observer_.focusLosses == 1; }));
    popover_->orderOut();
    waitForTheServer();
    EXPECT_EQ(bystander_->focused(), other);
    EXPECT_EQ(observer_.focusLosses, 1);
}

TEST_F(PopoverTest, MayBeEndedByWhatItTells) {
    const std::pair<const char*, std::function<void()>> causes[] = {
        {"Esc", [this] { type("Escape"); }},
        {"a press elsewhere", [this] { click(900, 600); }},
        {"focus",
         [this] {
             bystander_->focus(bystander_->open({0, 0, 10, 10}));
         }},
        {"a managed one that is asked to close",
         [this] {
             makeOn({.managedPopovers = true});
             open();
             bystander_->send(window(), "WM_PROTOCOLS", {bystander_->atom("WM_DELETE_WINDOW")});
         }},
    };
    for (const auto& [name, cause] : causes) {
        observer_.then = nullptr;
        make();
        open();
        observer_.then = [this] { popover_.reset(); };
        cause();
        EXPECT_TRUE(comes([&] { return popover_ == nullptr; })) << name;
        EXPECT_TRUE(comes([&] { return window() == XCB_NONE; })) << name;
    }
}

TEST_F(PopoverTest, FollowsScaleAppearanceAndCompositorAndStaysOnTheScreen) {
    open();
    setDark(true);
    EXPECT_TRUE(comes([&] { return (bystander_->pixelAt(400, 200) & 0xFF) < 60; }));
    const xcb_window_t owner = startCompositor();
    // With room for a shadow, which is no part of it.
    ASSERT_TRUE(comesToBeAt({270, 70, 260, 180}));
    EXPECT_TRUE(comesToShow(340, 140, kGreenPixel));
    EXPECT_TRUE(comes([&] { return bystander_->focused() == bystander_->windows().back(); }));
    EXPECT_EQ(popover_->frame(), kPopover.inPoints(1));
    click(295, 150);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; })) << "on the shadow";
    click(305, 150);
    EXPECT_TRUE(comesToTell({Kind::press, {5, 50}}));
    bystander_->close(owner);
    EXPECT_TRUE(comesToBeAt(kPopover));
    bystander_->setResources("Xft.dpi: 144");
    ASSERT_TRUE(comesToBeAt({450, 150, 300, 180}));
    EXPECT_TRUE(comesToShow(450 + 60, 150 + 60, kGreenPixel));
    EXPECT_EQ(popover_->frame(), kPopover.inPoints(1)) << "points are points";
    bystander_->setResources("Xft.dpi: 288");  // its corners would be at 900, 300 and 1500, 660
    EXPECT_TRUE(comesToBeAt({Xvfb::kWidth - 600, 300, 600, 360}));
}

TEST_F(PopoverTest, WorksWithoutSharedMemoryAndHoldsThePointerWherePressesElsewhereCannotBeHeard) {
    content_.size = {600, 600};  // larger than one request
    content_.swatches.push_back({{{550, 550}, {40, 40}}, kBlue});
    makeOn({.shm = false, .input = false});
    show(anchorAbove(600, 50));
    EXPECT_TRUE(shows(300 + 40, 50 + 40, kGreenPixel) && shows(300 + 570, 50 + 570, kBluePixel));
    click(950, 600);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
    click(305, 150);
    EXPECT_TRUE(comesToTell({Kind::press, {5, 100}}));
    EXPECT_EQ(observer_.pressesOutside, 1);
    bystander_->open({600, 300, 100, 100});
    popover_->orderOut();
    click(650, 350);
    EXPECT_TRUE(comes([&] { return bystander_->presses() == 1; })) << "closed, it lets go";
}

// Where the window manager puts it, wherever that is.
TEST_F(PopoverTest, UnderAWaylandCompositorItIsADialogOfTheWindowManagers) {
    makeOn({.managedPopovers = true});
    // It ends with its display. While it starts it loses requests: it says itself when it has.
    run("openbox --sm-disable --startup 'xsetroot -name started' &");
    ASSERT_TRUE(comes([&] { return bystander_->text(bystander_->root(), "WM_NAME") == "started"; }));
    for (int times = 1; times <= 2; ++times) {
        open();
        click(310, 115);
        EXPECT_TRUE(comesToTell({Kind::press, {10, 15}}));
        content_.pointerEvents.clear();
        type("Escape");
        EXPECT_TRUE(comes([&] { return observer_.escapes == times; }));
        EXPECT_EQ(observer_.pressesOutside + observer_.focusLosses, 0);
        popover_->orderOut();
        EXPECT_TRUE(comes([&] { return window() == XCB_NONE; }));
    }
    open();
    EXPECT_EQ(bystander_->numbers(window(), "_NET_WM_WINDOW_TYPE"),
              Bystander::Numbers{bystander_->atom("_NET_WM_WINDOW_TYPE_DIALOG")});
    bystander_->move(window(), {600, 400, 200, 120});
    click(610, 415);
    EXPECT_TRUE(comesToTell({Kind::press, {10, 15}}));
    content_.size = {200, 200};
    content_.change();
    EXPECT_TRUE(comes([&] { return bystander_->frameOf(window()).height == 200; }));
    click(620, 590);
    EXPECT_TRUE(comesToTell({Kind::press, {20, 190}})) << "it stays there when it grows";
    EXPECT_EQ(observer_.pressesOutside, 0);
    const xcb_window_t other = bystander_->open({100, 300, 100, 100});
    bystander_->focus(other);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; })) << "the keyboard has gone";
    click(310, 115);  // where it was meant to be
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside > 1; }));
    bystander_->focus(other);
    popover_->orderOut();
    waitForTheServer();
    EXPECT_EQ(bystander_->focused(), other) << "who has chosen it keeps it";
}

}  // namespace
}  // namespace norvane
