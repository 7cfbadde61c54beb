#include <algorithm>

#include "DesktopTest.h"
#include "RecordingObserver.h"

namespace norvane {
namespace {

class PopoverTest : public DesktopTest {
 protected:
    static constexpr PixelRect kPopover{300, 100, 200, 120};

    void SetUp() override {
        DesktopTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        content_.swatches = {{{{20, 20}, {40, 40}}, kGreen}, {{{100, 20}, {40, 40}}, kGreen}};
        make();
    }
    void TearDown() override {
        popover_.reset();
        item_.reset();
        DesktopTest::TearDown();
    }

    void make() { popover_ = windowServer_->makePopoverWindow(content_, observer_); }
    void open() {
        popover_->place(anchorAbove(400, 100));
        popover_->orderFront();
        popover_->makeKeyWindow();
        ASSERT_TRUE(comes([&] { return shows(340, 140, kGreenPixel); }));
        ASSERT_TRUE(comes([&] { return bystander_->focused() == window(); }));
    }
    xcb_window_t window() const { return bystander_->windowAt(kPopover).value_or(XCB_NONE); }
    bool shows(int x, int y, std::uint32_t pixel) const { return bystander_->pixelAt(x, y) == pixel; }

    SwatchContent content_;
    RecordingObserver observer_;
    std::unique_ptr<PopoverWindow> popover_;
    std::unique_ptr<StatusItem> item_;
};

TEST_F(PopoverTest, IsPlacedFirstAndShownPaintedAtItsPlace) {
    popover_->place(anchorAbove(400, 100));
    EXPECT_EQ(popover_->frame(), (Rect{{300, 100}, {200, 120}}));
    EXPECT_EQ(popover_->visibleFrame(), (Rect{{0, 0}, {Xvfb::kWidth, Xvfb::kHeight}}));
    popover_->setFrame({{280, 90}, {1, 1}});
    EXPECT_EQ(popover_->frame(), (Rect{{280, 100}, {200, 120}})) << "it moves to and fro alone";
    settle();
    EXPECT_TRUE(bystander_->windows().empty());

    popover_->orderFront();
    // Without a turn of the main loop: it comes up painted.
    waitForTheServer();
    EXPECT_TRUE(shows(280 + 40, 100 + 40, kGreenPixel));
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
    const xcb_window_t behind = bystander_->open({200, 50, 500, 300});
    open();
    EXPECT_TRUE(shows(300, 100, kRedPixel));
    EXPECT_TRUE(shows(499, 219, kRedPixel));
    EXPECT_FALSE(shows(312, 100, kRedPixel));
    EXPECT_FALSE(shows(300, 112, kRedPixel));
    bystander_->close(behind);
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
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    open();
    click(650, 350);
    ASSERT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
    EXPECT_TRUE(comes([&] { return bystander_->presses() == 1; }));
    click(50, 650);  // on nothing but the root
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 2; }));
    click(50, 650, 5);  // a wheel's turn is no press
    click(50, 650, 3);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 3; }));
    bystander_->close(other);
}

TEST_F(PopoverTest, PressesOnOurOwnWindowsAreNotElsewhere) {
    int clicks = 0;
    item_ = windowServer_->statusItemWithLength(54);
    item_->setAction([&] { ++clicks; });
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
    click(650, 350);
    ASSERT_TRUE(comes([&] {
        return !secondContent.pointerEvents.empty() &&
               secondContent.pointerEvents.back().kind == PointerEvent::Kind::release;
    }));
    click(320, 110);
    ASSERT_TRUE(comes([&] {
        return !content_.pointerEvents.empty() &&
               content_.pointerEvents.back().kind == PointerEvent::Kind::release;
    }));
    EXPECT_EQ(observer_.pressesOutside, 0);
    EXPECT_EQ(secondObserver.pressesOutside, 0);
    EXPECT_EQ(observer_.focusLosses, 0) << "the keyboard went to a window of ours";

    click(50, 650);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1 && secondObserver.pressesOutside == 1; }));
}

TEST_F(PopoverTest, ThePointerIsToldInTheContentsPoints) {
    bystander_->setResources("Xft.dpi: 192");
    ASSERT_TRUE(comes([&] { return popover_->visibleFrame()->size.width == Xvfb::kWidth / 2; }));
    popover_->place(anchorAbove(200, 50));
    popover_->orderFront();
    moveTo(220, 130);
    click(220, 130);
    moveTo(900, 600);
    ASSERT_TRUE(comes([&] {
        return !content_.pointerEvents.empty() &&
               content_.pointerEvents.back().kind == PointerEvent::Kind::leave;
    }));
    const std::vector<PointerEvent>& events = content_.pointerEvents;
    using Kind = PointerEvent::Kind;
    EXPECT_EQ(std::count(events.begin(), events.end(), PointerEvent{Kind::press, {10, 15}}), 1);
    EXPECT_EQ(std::count(events.begin(), events.end(), PointerEvent{Kind::release, {10, 15}}), 1);
    EXPECT_EQ(events.front().kind, Kind::move);
}

TEST_F(PopoverTest, AWheelsNotchIsToldAsADistance) {
    open();
    for (const int button : {5, 4, 7, 6})
        click(310, 115, button);
    std::vector<PointerEvent> scrolls;
    ASSERT_TRUE(comes([&] {
        scrolls.clear();
        std::copy_if(content_.pointerEvents.begin(), content_.pointerEvents.end(),
                     std::back_inserter(scrolls),
                     [](const PointerEvent& event) { return event.kind == PointerEvent::Kind::scroll; });
        return scrolls.size() >= 4;
    }));
    const auto scroll = [](Point by) { return PointerEvent{PointerEvent::Kind::scroll, {10, 15}, by}; };
    EXPECT_EQ(scrolls, (std::vector{scroll({0, 40}), scroll({0, -40}), scroll({40, 0}), scroll({-40, 0})}));
    EXPECT_EQ(observer_.pressesOutside, 0);
}

TEST_F(PopoverTest, TheKeyboardThatGoesToAnotherProgramIsToldOnce) {
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    bystander_->focus(other);
    open();
    bystander_->focus(other);
    ASSERT_TRUE(comes([&] { return observer_.focusLosses == 1; }));
    popover_->orderOut();
    waitForTheServer();
    EXPECT_EQ(bystander_->focused(), other);
    EXPECT_EQ(observer_.focusLosses, 1);
}

TEST_F(PopoverTest, TheKeyboardGoesBackToWhereItWas) {
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    bystander_->focus(other);
    open();
    popover_->orderOut();
    EXPECT_TRUE(comes([&] { return bystander_->focused() == other; }));
    EXPECT_EQ(observer_.focusLosses, 0) << "it was given, not lost";
}

TEST_F(PopoverTest, AKeyboardThatMerelyFollowsThePointerComesBackWithIt) {
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    open();
    moveTo(650, 350);
    bystander_->focus(other);  // as window managers do that focus what the pointer is over
    settle();
    EXPECT_EQ(observer_.focusLosses, 0);
    moveTo(310, 115);
    EXPECT_TRUE(comes([&] { return bystander_->focused() == window(); }));
    EXPECT_EQ(observer_.focusLosses, 0);
    bystander_->focus(other);  // the pointer is elsewhere: a choice
    EXPECT_TRUE(comes([&] { return observer_.focusLosses == 1; }));
}

TEST_F(PopoverTest, StaysOnAScreenOfAnotherScale) {
    open();
    bystander_->setResources("Xft.dpi: 288");  // its corner would be at 900, 300, its far corner at 1500, 660
    EXPECT_TRUE(comes([&] { return bystander_->windowAt({Xvfb::kWidth - 600, 300, 600, 360}).has_value(); }));
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

TEST_F(PopoverTest, GrowsAndShrinksFromItsTopLeftCornerAndMovesToAnotherAnchor) {
    open();
    content_.size = {260, 300};
    content_.swatches.push_back({{{200, 250}, {40, 40}}, kBlue});
    content_.change();
    ASSERT_TRUE(comes([&] { return shows(300 + 220, 100 + 270, kBluePixel); }));
    EXPECT_TRUE(shows(340, 140, kGreenPixel));
    EXPECT_TRUE(bystander_->windowAt({300, 100, 260, 300}));
    EXPECT_EQ(popover_->frame(), (Rect{{300, 100}, {260, 300}}));
    content_.size = {100, 80};
    content_.change();
    ASSERT_TRUE(comes([&] { return bystander_->windowAt({300, 100, 100, 80}).has_value(); }));
    popover_->place(anchorAbove(600, 100));  // below another anchor, without closing
    ASSERT_TRUE(comes([&] { return bystander_->windowAt({550, 100, 100, 80}).has_value(); }));
    EXPECT_TRUE(comes([&] { return shows(590, 140, kGreenPixel); }));
}

TEST_F(PopoverTest, PaintsOnlyWhatChanged) {
    content_.size = {300, 300};  // large enough for shared memory
    popover_->place(anchorAbove(450, 100));
    popover_->orderFront();
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

TEST_F(PopoverTest, FollowsScaleAndAppearanceWhileShown) {
    open();
    const auto brightness = [&](int x, int y) { return bystander_->pixelAt(x, y) & 0xFF; };
    EXPECT_GT(brightness(400, 200), 200u);
    appearance_.setDark(true);
    EXPECT_TRUE(comes([&] { return brightness(400, 200) < 60; }));
    bystander_->setResources("Xft.dpi: 144");
    ASSERT_TRUE(comes([&] { return bystander_->windowAt({450, 150, 300, 180}).has_value(); }));
    EXPECT_TRUE(comes([&] { return shows(450 + 60, 150 + 60, kGreenPixel); }));
    EXPECT_EQ(popover_->frame(), (Rect{{300, 100}, {200, 120}})) << "points are points";
}

TEST_F(PopoverTest, TakesTheKindThatTheCompositorAllowsWhileShown) {
    open();
    const xcb_window_t owner = bystander_->open({0, 0, 1, 1});
    xcb_set_selection_owner(bystander_->get(), owner, bystander_->atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
    bystander_->sync();
    const auto depthOfFront = [&] {
        const auto windows = bystander_->windows();
        const X11Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
            bystander_->get(), xcb_get_geometry(bystander_->get(), windows.back()), nullptr));
        return geometry ? geometry->depth : 0;
    };
    ASSERT_TRUE(comes([&] { return depthOfFront() == 32; }));
    EXPECT_TRUE(comes([&] { return shows(340, 140, kGreenPixel); }));
    EXPECT_TRUE(comes([&] { return bystander_->focused() == bystander_->windows().back(); }));
    // There is a shadow around it now, which is no part of it: neither for the pointer nor for its owner.
    EXPECT_EQ(popover_->frame(), (Rect{{300, 100}, {200, 120}}));
    const int told = observer_.pressesOutside;
    click(295, 150);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == told + 1; }));
    click(305, 150);
    const std::vector<PointerEvent>& events = content_.pointerEvents;
    const PointerEvent press{PointerEvent::Kind::press, {5, 50}};
    EXPECT_TRUE(comes([&] { return std::count(events.begin(), events.end(), press) == 1; }));
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
    popover_.reset();
    connect({.shm = false});
    content_.size = {600, 600};  // larger than one request
    content_.swatches.push_back({{{550, 550}, {40, 40}}, kBlue});
    make();
    popover_->place(anchorAbove(600, 50));
    popover_->orderFront();
    waitForTheServer();
    EXPECT_TRUE(shows(300 + 40, 50 + 40, kGreenPixel));
    EXPECT_TRUE(shows(300 + 570, 50 + 570, kBluePixel));
}

TEST_F(PopoverTest, HoldsThePointerWherePressesElsewhereCannotBeHeard) {
    popover_.reset();
    connect({.input = false});
    make();
    open();
    click(900, 600);
    EXPECT_TRUE(comes([&] { return observer_.pressesOutside == 1; }));
    click(305, 150);
    const PointerEvent press{PointerEvent::Kind::press, {5, 50}};
    const std::vector<PointerEvent>& events = content_.pointerEvents;
    EXPECT_TRUE(comes([&] { return std::count(events.begin(), events.end(), press) == 1; }));
    EXPECT_EQ(observer_.pressesOutside, 1);
    // Closed, it lets go.
    const xcb_window_t other = bystander_->open({600, 300, 100, 100});
    popover_->orderOut();
    click(650, 350);
    EXPECT_TRUE(comes([&] { return bystander_->presses() == 1; }));
    bystander_->close(other);
}

}  // namespace
}  // namespace norvane
