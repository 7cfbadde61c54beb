#include "DesktopTest.h"

namespace norvane {
namespace {

constexpr PixelRect kStrip{Xvfb::kWidth - 54, 0, 54, 22};

class StripTest : public DesktopTest {
 protected:
    void SetUp() override {
        DesktopTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        content_.swatches = {{{{4, 4}, {10, 10}}, kGreen}, {{{30, 4}, {10, 10}}, kGreen}};
    }
    void TearDown() override {
        item_.reset();
        DesktopTest::TearDown();
    }

    void show() {
        item_ = windowServer_->statusItemWithLength(54);
        item_->setContent(&content_);
        item_->setAction([this] { ++clicks_; });
        ASSERT_TRUE(comes([&] { return bystander_->pixelAt(kStrip.x + 8, 8) == kGreenPixel; }));
    }
    xcb_window_t window() const { return bystander_->windowAt(kStrip).value_or(XCB_NONE); }

    SwatchContent content_;
    std::unique_ptr<StatusItem> item_;
    int clicks_ = 0;
};

TEST_F(StripTest, IsADockAtTheTopRightThatReservesItsRow) {
    show();
    const xcb_window_t strip = window();
    ASSERT_NE(strip, XCB_NONE);
    using Numbers = std::vector<std::uint32_t>;
    EXPECT_EQ(bystander_->numbers(strip, "_NET_WM_WINDOW_TYPE"),
              Numbers{bystander_->atom("_NET_WM_WINDOW_TYPE_DOCK")});
    EXPECT_EQ(bystander_->numbers(strip, "_NET_WM_STRUT"), (Numbers{0, 0, 22, 0}));
    EXPECT_EQ(bystander_->numbers(strip, "_NET_WM_STRUT_PARTIAL"),
              (Numbers{0, 0, 22, 0, 0, 0, 0, 0, Xvfb::kWidth - 54, Xvfb::kWidth - 1, 0, 0}));
    const Numbers states = bystander_->numbers(strip, "_NET_WM_STATE");
    for (const char* state : {"_NET_WM_STATE_STICKY", "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR",
                              "_NET_WM_STATE_SKIP_PAGER"}) {
        EXPECT_NE(std::find(states.begin(), states.end(), bystander_->atom(state)), states.end()) << state;
    }
    const Numbers hints = bystander_->numbers(strip, "WM_HINTS");
    ASSERT_GE(hints.size(), 2u);
    EXPECT_EQ(hints[0] & 1, 1u) << "says whether it takes the keyboard";
    EXPECT_EQ(hints[1], 0u) << "does not take the keyboard";
    EXPECT_EQ(bystander_->text(strip, "WM_CLASS"), std::string("norvane\0norvane\0", 16));
    EXPECT_EQ(bystander_->text(strip, "_NET_WM_NAME"), "Norvane");
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        bystander_->get(), xcb_get_window_attributes(bystander_->get(), strip), nullptr));
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->override_redirect, 0) << "a window manager may manage it";

    EXPECT_EQ(item_->buttonFrame(), (Rect{{Xvfb::kWidth - 54, 0}, {54, 22}}));
    EXPECT_EQ(content_.sizes.back(), (Size{54, 22}));
}

TEST_F(StripTest, TellsOfPressesOfTheFirstButtonOnIt) {
    show();
    click(kStrip.x + 50, 20);
    ASSERT_TRUE(comes([&] { return clicks_ == 1; }));
    click(kStrip.x + 20, 10, 3);
    click(kStrip.x - 5, 10);
    click(kStrip.x + 20, 10);
    ASSERT_TRUE(comes([&] { return clicks_ == 2; }));
    EXPECT_TRUE(content_.pointerEvents.empty()) << "the button's presses are not the content's";
}

TEST_F(StripTest, PaintsOnlyWhatChanged) {
    show();
    settle();
    bystander_->smear(window(), {20, 6, 4, 4}, kRedPixel);  // between the two squares
    content_.swatches[1].color = kBlue;
    content_.change();
    ASSERT_TRUE(comes([&] { return bystander_->pixelAt(kStrip.x + 34, 8) == kBluePixel; }));
    EXPECT_EQ(bystander_->pixelAt(kStrip.x + 22, 8), kRedPixel);
}

TEST_F(StripTest, ManyChangesAreOneRepaint) {
    show();
    settle();
    const int before = content_.pictures;
    content_.swatches[1].color = kBlue;
    for (int i = 0; i < 100; ++i)
        content_.change();
    ASSERT_TRUE(comes([&] { return bystander_->pixelAt(kStrip.x + 34, 8) == kBluePixel; }));
    EXPECT_EQ(content_.pictures, before + 1);
}

TEST_F(StripTest, MovesWhileSomethingInItMovesAndItCanBeSeen) {
    using namespace std::chrono_literals;
    content_.rate = 50;
    show();
    ASSERT_TRUE(comes([&] { return content_.pictures > 10; }));
    EXPECT_GE(content_.times.back() - content_.times.front(), 9 * 20ms);
    xcb_unmap_window(bystander_->get(), window());
    bystander_->sync();
    settle();
    int before = content_.pictures;
    content_.change();
    turn(200ms);
    EXPECT_EQ(content_.pictures, before) << "off the screen";
    ASSERT_TRUE(comes([&] { return content_.pictures > before + 3; })) << "offered again, it goes on";
    content_.rate = 0;
    turn(100ms);
    before = content_.pictures;
    turn(200ms);
    EXPECT_EQ(content_.pictures, before) << "nothing moves any more";
}

TEST_F(StripTest, PaintsAgainWhatWasCovered) {
    show();
    const xcb_window_t cover = bystander_->open({kStrip.x, 0, 40, 22});
    EXPECT_TRUE(comes([&] { return bystander_->pixelAt(kStrip.x + 8, 8) == kGreenPixel; }));
    bystander_->close(cover);
    EXPECT_TRUE(comes([&] { return bystander_->pixelAt(kStrip.x + 34, 8) == kGreenPixel; }));
}

TEST_F(StripTest, ComesBackToTheFrontButDoesNotFightForIt) {
    show();
    const xcb_window_t strip = window();
    const xcb_window_t rival = bystander_->open({kStrip.x - 100, 0, 154, 100});
    ASSERT_TRUE(comes([&] { return bystander_->windows().back() == strip; }));
    // A rival that wants the front as well and answers at once. How often the strip comes back follows from
    // the time that has passed, by waits that double: 0.25, 0.5, 1, 2 s.
    const auto start = clock_.now();
    int returns = 0;
    while (clock_.now() - start < std::chrono::milliseconds(1000)) {
        bystander_->raise(rival);
        ++returns;
        ASSERT_TRUE(comes([&] { return bystander_->windows().back() == strip; }));
    }
    EXPECT_LE(returns, 4);
}

TEST_F(StripTest, ComesBackWhenSomebodyTakesItOffTheScreen) {
    show();
    xcb_unmap_window(bystander_->get(), window());
    bystander_->sync();
    ASSERT_TRUE(comes([&] { return bystander_->pixelAt(kStrip.x + 8, 8) != kGreenPixel; }));
    EXPECT_TRUE(comes([&] { return bystander_->pixelAt(kStrip.x + 8, 8) == kGreenPixel; }));
    xcb_destroy_window(bystander_->get(), window());
    bystander_->sync();
    EXPECT_TRUE(comes([&] { return bystander_->pixelAt(kStrip.x + 8, 8) == kGreenPixel; }));
}

TEST_F(StripTest, FollowsItsLength) {
    show();
    item_->setLength(StatusItem::kSquareLength);
    EXPECT_EQ(item_->buttonFrame(), (Rect{{Xvfb::kWidth - 22, 0}, {22, 22}}));
    ASSERT_TRUE(comes([&] { return bystander_->windowAt({Xvfb::kWidth - 22, 0, 22, 22}).has_value(); }));
    ASSERT_TRUE(comes([&] { return bystander_->pixelAt(Xvfb::kWidth - 22 + 8, 8) == kGreenPixel; }));
    EXPECT_EQ(content_.sizes.back(), (Size{22, 22}));
    for (const double garbage :
         {0.0, -7.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        item_->setLength(garbage);
        EXPECT_EQ(item_->buttonFrame()->size, (Size{22, 22})) << garbage;
    }
    item_->setLength(1e9);
    EXPECT_EQ(item_->buttonFrame()->size.width, Xvfb::kWidth) << "no wider than its monitor";
}

TEST_F(StripTest, FollowsTheScale) {
    show();
    bystander_->setResources("Xft.dpi:\t192\n");
    const PixelRect doubled{Xvfb::kWidth - 108, 0, 108, 44};
    ASSERT_TRUE(comes([&] { return bystander_->windowAt(doubled).has_value(); }));
    ASSERT_TRUE(comes([&] { return bystander_->pixelAt(doubled.x + 70, 16) == kGreenPixel; }));
    EXPECT_EQ(item_->buttonFrame(), (Rect{{(Xvfb::kWidth - 108) / 2.0, 0}, {54, 22}}));
    EXPECT_EQ(bystander_->numbers(*bystander_->windowAt(doubled), "_NET_WM_STRUT"),
              (std::vector<std::uint32_t>{0, 0, 44, 0}));
}

TEST_F(StripTest, GoesToThePrimaryMonitor) {
    show();
    // Below another one its row cannot be reserved: that would take the other one's.
    ASSERT_EQ(runOn(xvfb_.display(), {"xrandr", "--setmonitor", "*lower", "600/150x400/100+0+300", "none"}),
              0);
    const PixelRect lower{600 - 54, 300, 54, 22};
    ASSERT_TRUE(comes([&] { return bystander_->windowAt(lower).has_value(); }));
    EXPECT_EQ(bystander_->numbers(*bystander_->windowAt(lower), "_NET_WM_STRUT"),
              (std::vector<std::uint32_t>{0, 0, 0, 0}));
    ASSERT_TRUE(comes([&] { return item_->buttonFrame() == Rect{{546, 300}, {54, 22}}; }));
}

TEST_F(StripTest, IsDarkOrLightWithTheDesktop) {
    show();
    const auto brightness = [&] { return bystander_->pixelAt(kStrip.x + 25, 18) & 0xFF; };
    EXPECT_GT(brightness(), 200u);
    appearance_.setDark(true);
    EXPECT_TRUE(comes([&] { return brightness() < 60; }));
}

TEST_F(StripTest, GoesAwayWithItsItem) {
    show();
    item_.reset();
    EXPECT_TRUE(comes([&] { return bystander_->windows().empty(); }));
    content_.change();  // nobody listens any more
}

TEST_F(StripTest, AnActionMayEndTheItem) {
    show();
    item_->setAction([this] {
        item_.reset();
        ++clicks_;
    });
    click(kStrip.x + 20, 10);
    ASSERT_TRUE(comes([&] { return clicks_ == 1; }));
    EXPECT_TRUE(comes([&] { return bystander_->windows().empty(); }));
}

}  // namespace
}  // namespace norvane
