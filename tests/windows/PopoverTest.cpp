#include "PopoverFixture.h"

namespace norvane {
namespace {

using Kind = PointerEvent::Kind;

class PopoverTest : public PopoverFixture {};

TEST_F(PopoverTest, IsPlacedFirstAndShownPaintedAtItsPlace) {
    popover_->place(anchorAbove(400, 100));
    EXPECT_EQ(popover_->frame(), (Rect{{300, 100}, {200, 120}}));
    EXPECT_EQ(popover_->visibleFrame(), (Rect{{0, 0}, {Xvfb::kWidth, Xvfb::kHeight}}));
    popover_->setFrame({{280, 90}, {1, 1}});
    EXPECT_EQ(popover_->frame(), (Rect{{280, 100}, {200, 120}})) << "it moves to and fro alone";
    settle();
    EXPECT_TRUE(bystander_->windows().empty());

    popover_->orderFront();
    waitForTheServer();
    EXPECT_TRUE(shows(280 + 40, 100 + 40, kGreenPixel)) << "painted without a turn of the main loop";
    const auto shown = bystander_->windowAt({280, 100, 200, 120});
    ASSERT_TRUE(shown);
    EXPECT_EQ(bystander_->text(*shown, "WM_CLASS"), std::string("norvane\0norvane\0", 16));

    popover_->orderOut();
    waitForTheServer();
    EXPECT_TRUE(bystander_->windows().empty());
    content_.change();
    open();
}

TEST_F(PopoverTest, HasRoundCornersWithoutACompositor) {
    bystander_->open({200, 50, 500, 300});
    open();
    EXPECT_TRUE(shows(300, 100, kRedPixel) && shows(499, 219, kRedPixel));
    EXPECT_FALSE(shows(312, 100, kRedPixel) || shows(300, 112, kRedPixel));
}

TEST_F(PopoverTest, EscapeIsTheContentsUnlessItHasNoUseForIt) {
    open();
    type("Escape");
    ASSERT_TRUE(comes([&] { return observer_.escapes == 1; }));
    EXPECT_EQ(content_.keyEvents, (std::vector<KeyEvent>{{KeyEvent::Key::escape}}));
    content_.usesKeys = true;
    content_.keyEvents.clear();
    for (const char* key : {"Tab", "shift+Tab", "space", "Return", "KP_Enter", "Up", "Down", "Left", "Right",
                            "Prior", "Next", "Home", "End", "KP_Home", "x", "control+Escape", "Escape"}) {
        type(key);
    }
    using Key = KeyEvent::Key;
    const std::vector<KeyEvent> wanted{{Key::tab},       {Key::backTab}, {Key::space},    {Key::returnKey},
                                       {Key::returnKey}, {Key::up},      {Key::down},     {Key::left},
                                       {Key::right},     {Key::pageUp},  {Key::pageDown}, {Key::home},
                                       {Key::end},       {Key::home},    {Key::escape}};
    EXPECT_TRUE(comes([&] { return content_.keyEvents.size() >= wanted.size(); }));
    EXPECT_EQ(content_.keyEvents, wanted);
    EXPECT_EQ(observer_.escapes, 1);
}

TEST_F(PopoverTest, APressElsewhereIsToldAndStillReachesItsTarget) {
    bystander_->open({600, 300, 100, 100});
    open();
    click(650, 350);
    ASSERT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
    EXPECT_TRUE(comes([&] { return bystander_->presses() == 1; }));
    click(50, 650);  // on nothing but the root
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 2; }));
    click(50, 650, 5);  // a wheel's turn is no press
    click(50, 650, 3);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 3; }));
}

TEST_F(PopoverTest, PressesOnOurOwnWindowsAreNotElsewhere) {
    int clicks = 0;
    const auto item = windowServer_->statusItemWithLength(54);
    item->setAction([&] { ++clicks; });
    open();
    ASSERT_TRUE(comes([&] { return bystander_->windows().size() == 2; }));
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
    EXPECT_EQ(observer_.pressesOutside + secondObserver.pressesOutside, 0);
    EXPECT_EQ(observer_.focusLosses, 0) << "the keyboard went to a window of ours";
    click(50, 650);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1 && secondObserver.pressesOutside == 1; }));
}

TEST_F(PopoverTest, ThePointerIsToldInTheContentsPoints) {
    bystander_->setResources("Xft.dpi: 192");
    ASSERT_TRUE(comes([&] { return popover_->visibleFrame()->size.width == Xvfb::kWidth / 2; }));
    show(anchorAbove(200, 50));
    moveTo(220, 130);
    for (const int button : {1, 5, 4, 7, 6})
        click(220, 130, button);
    ASSERT_TRUE(comesToTell({Kind::scroll, {10, 15}, {-40, 0}}));
    moveTo(900, 600);
    ASSERT_TRUE(comes([&] { return told({Kind::leave, {}}) == 1; }));
    EXPECT_EQ(content_.pointerEvents.front().kind, Kind::move);
    for (const Kind kind : {Kind::press, Kind::release})
        EXPECT_EQ(told({kind, {10, 15}}), 1);
    for (const Point notch : {Point{0, 40}, Point{0, -40}, Point{40, 0}})
        EXPECT_EQ(told({Kind::scroll, {10, 15}, notch}), 1) << notch.x << ", " << notch.y;
    EXPECT_EQ(observer_.pressesOutside, 0);
}

TEST_F(PopoverTest, TheKeyboardGoesBackToWhereItWasAndItsLossIsToldOnce) {
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    bystander_->focus(other);
    open();
    popover_->orderOut();
    EXPECT_TRUE(comes([&] { return bystander_->focused() == other; }));
    EXPECT_EQ(observer_.focusLosses, 0) << "it was given, not lost";
    open();
    bystander_->focus(other);
    ASSERT_TRUE(comes([&] { return observer_.focusLosses == 1; }));
    popover_->orderOut();
    waitForTheServer();
    EXPECT_EQ(bystander_->focused(), other);
    EXPECT_EQ(observer_.focusLosses, 1);
}

TEST_F(PopoverTest, AKeyboardThatMerelyFollowsThePointerComesBackWithIt) {
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    open();
    moveTo(650, 350);
    bystander_->focus(other);  // as window managers do that focus what the pointer is over
    settle();
    moveTo(310, 115);
    EXPECT_TRUE(comes([&] { return bystander_->focused() == window(); }));
    EXPECT_EQ(observer_.focusLosses, 0);
    bystander_->focus(other);  // the pointer is elsewhere: a choice
    EXPECT_TRUE(comes([&] { return observer_.focusLosses == 1; }));
}

TEST_F(PopoverTest, MayBeEndedByWhatItTells) {
    const struct {
        const char* name;
        std::function<void()> cause;
    } cases[] = {{"Esc", [this] { type("Escape"); }},
                 {"a press elsewhere", [this] { click(900, 600); }},
                 {"focus", [this] {
                      bystander_->focus(bystander_->open({0, 0, 10, 10}));
                  }}};
    for (const auto& c : cases) {
        if (!popover_) make();
        open();
        observer_.then = [this] { popover_.reset(); };
        c.cause();
        EXPECT_TRUE(comes([&] { return popover_ == nullptr; })) << c.name;
        EXPECT_TRUE(comes([&] { return window() == XCB_NONE; })) << c.name;
        observer_.then = nullptr;
    }
}

TEST_F(PopoverTest, MovesToAnotherAnchorWithoutClosing) {
    open();
    content_.size = {100, 80};
    content_.change();
    ASSERT_TRUE(comesToBeAt({300, 100, 100, 80})) << "it shrinks to its corner";
    popover_->place(anchorAbove(600, 100));
    ASSERT_TRUE(comesToBeAt({550, 100, 100, 80}));
    EXPECT_TRUE(comes([&] { return shows(590, 140, kGreenPixel); }));
}

TEST_F(PopoverTest, PaintsOnlyWhatChanged) {
    content_.size = {300, 300};  // large enough for shared memory
    show(anchorAbove(450, 100));
    settle();
    ASSERT_TRUE(shows(340, 140, kGreenPixel));
    const auto shown = bystander_->windowAt({300, 100, 300, 300});
    ASSERT_TRUE(shown);
    bystander_->smear(*shown, {70, 30, 10, 10}, kRedPixel);
    content_.swatches[1].color = kBlue;
    content_.change();
    ASSERT_TRUE(comes([&] { return shows(300 + 120, 140, kBluePixel); }));
    EXPECT_TRUE(shows(300 + 75, 135, kRedPixel));
}

TEST_F(PopoverTest, PaintsNothingWhileItCannotBeSeen) {
    open();
    const xcb_window_t cover = bystander_->open({250, 50, 400, 300});
    ASSERT_TRUE(comes([&] { return shows(340, 140, kRedPixel); }));
    content_.swatches[0].color = kBlue;
    settle();
    const int before = content_.pictures;
    content_.change();
    settle();
    EXPECT_EQ(content_.pictures, before);
    bystander_->close(cover);
    EXPECT_TRUE(comes([&] { return shows(340, 140, kBluePixel); }));
}

TEST_F(PopoverTest, FollowsScaleAndAppearanceAndStaysOnTheScreen) {
    open();
    const auto brightness = [&](int x, int y) { return bystander_->pixelAt(x, y) & 0xFF; };
    EXPECT_GT(brightness(400, 200), 200u);
    appearance_.setDark(true);
    EXPECT_TRUE(comes([&] { return brightness(400, 200) < 60; }));
    bystander_->setResources("Xft.dpi: 144");
    ASSERT_TRUE(comesToBeAt({450, 150, 300, 180}));
    EXPECT_TRUE(comes([&] { return shows(450 + 60, 150 + 60, kGreenPixel); }));
    EXPECT_EQ(popover_->frame(), (Rect{{300, 100}, {200, 120}})) << "points are points";
    bystander_->setResources("Xft.dpi: 288");  // its corner would be at 900, 300,
                                               // its far corner at 1500, 660
    EXPECT_TRUE(comesToBeAt({Xvfb::kWidth - 600, 300, 600, 360}));
}

TEST_F(PopoverTest, TakesTheKindThatTheCompositorAllowsWhileShown) {
    open();
    const xcb_window_t owner = startCompositor();
    const auto depthOfFront = [&] {
        const X11Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
            bystander_->get(), xcb_get_geometry(bystander_->get(), bystander_->windows().back()), nullptr));
        return geometry ? geometry->depth : 0;
    };
    ASSERT_TRUE(comes([&] { return depthOfFront() == 32; }));
    EXPECT_TRUE(comes([&] { return shows(340, 140, kGreenPixel); }));
    EXPECT_TRUE(comes([&] { return bystander_->focused() == bystander_->windows().back(); }));
    EXPECT_EQ(popover_->frame(), (Rect{{300, 100}, {200, 120}})) << "the shadow is no part of it";
    const int before = observer_.pressesOutside;
    click(295, 150);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == before + 1; })) << "on the shadow";
    click(305, 150);
    EXPECT_TRUE(comesToTell({Kind::press, {5, 50}}));
    bystander_->close(owner);
    EXPECT_TRUE(comes([&] { return depthOfFront() == 24; }));
}

TEST_F(PopoverTest, GarbageSizesAndPlacesDoNoHarm) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    for (const Size size : {Size{none, 10}, Size{endless, endless}, Size{-5, 0}, Size{1e300, 1e300}}) {
        content_.size = size;
        for (const Rect& anchor : {Rect{{none, none}, {none, 1}}, Rect{{-endless, endless}, {endless, -5}},
                                   Rect{{1e18, -1e18}, {1e300, 0}}, Rect{}}) {
            popover_->place(anchor);
            popover_->setFrame(anchor);
            popover_->orderFront();
            content_.onTheWay = Size{endless, size.height};
            content_.rate = none;
            content_.change();
            settle();
            content_.onTheWay.reset();
            popover_->orderOut();
        }
    }
    EXPECT_TRUE(connection_->isAlive());
    content_.size = {200, 120};
    content_.rate = 0;
    open();
}

TEST_F(PopoverTest, WorksWithoutSharedMemory) {
    content_.size = {600, 600};  // larger than one request
    content_.swatches.push_back({{{550, 550}, {40, 40}}, kBlue});
    makeOn({.shm = false});
    show(anchorAbove(600, 50));
    EXPECT_TRUE(shows(300 + 40, 50 + 40, kGreenPixel));
    EXPECT_TRUE(shows(300 + 570, 50 + 570, kBluePixel));
}

TEST_F(PopoverTest, HoldsThePointerWherePressesElsewhereCannotBeHeard) {
    makeOn({.input = false});
    open();
    click(900, 600);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
    click(305, 150);
    EXPECT_TRUE(comesToTell({Kind::press, {5, 50}}));
    EXPECT_EQ(observer_.pressesOutside, 1);
    bystander_->open({600, 300, 100, 100});
    popover_->orderOut();
    click(650, 350);
    EXPECT_TRUE(comes([&] { return bystander_->presses() == 1; })) << "closed, it lets go";
}

}  // namespace
}  // namespace norvane
