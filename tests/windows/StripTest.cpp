#include "DesktopTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class StripTest : public DesktopTest {
 protected:
    void begin() override {
        content_.swatches = {{{{4, 4}, {10, 10}}, kGreen}, {{{30, 4}, {10, 10}}, kGreen}};
        item_ = windowServer_->statusItemWithLength(54);
        item_->setContent(&content_);
        item_->setAction([this] { ++clicks_; });
        ASSERT_TRUE(comesToShow(8, kGreenPixel));
    }
    bool comesToShow(int x, std::uint32_t pixel) const {
        return comes([&] { return shows(kStrip.x + x, 8, pixel); });
    }
    bool comesToBeAt(const PixelRect& place) const {
        return comes([&] { return bystander_->windowAt(place).has_value(); });
    }
    xcb_window_t window() const { return bystander_->windowAt(kStrip).value_or(XCB_NONE); }
    bool goesAway() const {
        return comes([&] { return bystander_->windows().empty(); });
    }

    SwatchContent content_;
    std::unique_ptr<StatusItem> item_;
    int clicks_ = 0;
};

TEST_F(StripTest, IsADockAtTheTopRightThatReservesItsRow) {
    const xcb_window_t strip = window();
    ASSERT_NE(strip, XCB_NONE);
    using Numbers = std::vector<std::uint32_t>;
    EXPECT_FALSE(bystander_->isUnmanaged(strip));
    EXPECT_TRUE(bystander_->hasAtom(strip, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DOCK"));
    EXPECT_EQ(bystander_->numbers(strip, "_NET_WM_STRUT"), (Numbers{0, 0, 22, 0}));
    EXPECT_EQ(bystander_->numbers(strip, "_NET_WM_STRUT_PARTIAL"),
              (Numbers{0, 0, 22, 0, 0, 0, 0, 0, Xvfb::kWidth - 54, Xvfb::kWidth - 1, 0, 0}));
    for (const char* state : {"_NET_WM_STATE_STICKY", "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR"})
        EXPECT_TRUE(bystander_->hasAtom(strip, "_NET_WM_STATE", state)) << state;
    const Numbers hints = bystander_->numbers(strip, "WM_HINTS");
    ASSERT_GE(hints.size(), 2u);
    EXPECT_EQ(hints[0] & 1, 1u) << "says whether it takes the keyboard";
    EXPECT_EQ(hints[1], 0u) << "does not take the keyboard";
    EXPECT_EQ(bystander_->text(strip, "WM_CLASS"), std::string("norvane\0norvane\0", 16));
    EXPECT_EQ(item_->buttonFrame(), kStrip.inPoints(1));
    EXPECT_EQ(content_.sizes.back(), (Size{54, 22}));
}

TEST_F(StripTest, TellsOfPressesOfTheFirstButtonOnItAndMayEndThen) {
    click(kStrip.x + 50, 20);
    ASSERT_TRUE(comes([&] { return clicks_ == 1; }));
    click(kStrip.x + 20, 10, 3);
    click(kStrip.x - 5, 10);
    click(kStrip.x + 20, 10);
    ASSERT_TRUE(comes([&] { return clicks_ == 2; }));
    EXPECT_TRUE(content_.pointerEvents.empty()) << "the button's presses are not the content's";
    item_->setAction([this] { item_.reset(); });
    click(kStrip.x + 20, 10);
    EXPECT_TRUE(goesAway());
    content_.change();  // nobody listens any more
}

TEST_F(StripTest, ManyChangesAreOneRepaint) {
    settle();
    const int before = content_.pictures;
    content_.swatches[1].color = kBlue;
    for (int i = 0; i < 100; ++i)
        content_.change();
    ASSERT_TRUE(comesToShow(34, kBluePixel));
    EXPECT_EQ(content_.pictures, before + 1);
}

TEST_F(StripTest, MovesWhileSomethingInItMovesAndItCanBeSeen) {
    const std::size_t first = content_.times.size();
    content_.rate = 50;
    content_.change();
    ASSERT_TRUE(comes([&] { return content_.times.size() > first + 10; }));
    EXPECT_GE(content_.times.back() - content_.times[first], 9 * 20ms);
    bystander_->unmap(window());
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

TEST_F(StripTest, ComesBackToTheFrontButDoesNotFightForIt) {
    const xcb_window_t strip = window();
    const xcb_window_t rival = bystander_->open({kStrip.x - 100, 0, 154, 100});
    const auto comesToTheFront = [&] { return comes([&] { return bystander_->windows().back() == strip; }); };
    ASSERT_TRUE(comesToTheFront());
    EXPECT_TRUE(comesToShow(34, kGreenPixel)) << "what was covered is painted again";
    // A rival that wants the front as well and answers at once. How often the
    // strip comes back follows from the time that has passed, by waits that
    // double: 0.25, 0.5, 1, 2 s.
    const auto start = clock_.now();
    int returns = 0;
    while (clock_.now() - start < 1000ms) {
        bystander_->raise(rival);
        ++returns;
        ASSERT_TRUE(comesToTheFront());
    }
    EXPECT_LE(returns, 4);
}

TEST_F(StripTest, ComesBackWhenSomebodyTakesItOffTheScreen) {
    bystander_->unmap(window());
    ASSERT_TRUE(comes([&] { return !shows(kStrip.x + 8, 8, kGreenPixel); }));
    EXPECT_TRUE(comesToShow(8, kGreenPixel));
    bystander_->close(window());
    EXPECT_TRUE(comesToShow(8, kGreenPixel));
}

TEST_F(StripTest, FollowsItsLengthWhichMayBeGarbage) {
    item_->setLength(StatusItem::kSquareLength);
    EXPECT_EQ(item_->buttonFrame(), (Rect{{Xvfb::kWidth - 22, 0}, {22, 22}}));
    ASSERT_TRUE(comesToBeAt({Xvfb::kWidth - 22, 0, 22, 22}));
    ASSERT_TRUE(comesToShow(54 - 22 + 8, kGreenPixel));
    EXPECT_EQ(content_.sizes.back(), (Size{22, 22}));
    for (const double garbage :
         {0.0, -7.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        item_->setLength(garbage);
        EXPECT_EQ(item_->buttonFrame()->size, (Size{22, 22})) << garbage;
    }
    item_->setLength(1e9);
    EXPECT_EQ(item_->buttonFrame()->size.width, Xvfb::kWidth) << "no wider than its monitor";
}

TEST_F(StripTest, FollowsScaleMonitorAndAppearance) {
    const auto brightness = [&] { return bystander_->pixelAt(kStrip.x + 25, 18) & 0xFF; };
    EXPECT_GT(brightness(), 200u);
    appearance_.setDark(true);
    EXPECT_TRUE(comes([&] { return brightness() < 60; }));

    bystander_->setResources("Xft.dpi:\t192\n");
    const PixelRect doubled{Xvfb::kWidth - 108, 0, 108, 44};
    ASSERT_TRUE(comesToBeAt(doubled));
    ASSERT_TRUE(comes([&] { return shows(doubled.x + 70, 16, kGreenPixel); }));
    EXPECT_EQ(item_->buttonFrame(), doubled.inPoints(2));
    using Numbers = std::vector<std::uint32_t>;
    EXPECT_EQ(bystander_->numbers(*bystander_->windowAt(doubled), "_NET_WM_STRUT"), (Numbers{0, 0, 44, 0}));

    bystander_->setResources("");
    ASSERT_TRUE(comesToBeAt(kStrip));
    // Below another one its row cannot be reserved: that would take the other
    // one's.
    ASSERT_EQ(runOn(xvfb_.display(), {"xrandr", "--setmonitor", "*lower", "600/150x400/100+0+300", "none"}),
              0);
    const PixelRect lower{600 - 54, 300, 54, 22};
    ASSERT_TRUE(comesToBeAt(lower));
    EXPECT_EQ(bystander_->numbers(*bystander_->windowAt(lower), "_NET_WM_STRUT"), (Numbers{0, 0, 0, 0}));
    EXPECT_TRUE(comes([&] { return item_->buttonFrame() == lower.inPoints(1); }));
}

}  // namespace
}  // namespace norvane
