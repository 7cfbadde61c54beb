#include <cstdlib>

#include "DesktopTest.h"
#include "RecordingObserver.h"

namespace norvane {
namespace {

constexpr Rect kHighAnchor = anchorAbove(400, 100);
constexpr Rect kLowAnchor{{373, 670}, {54, 22}};
constexpr int kLowEdge = 664;

// A popover whose content grows, shrinks and moves, on every kind of screen.
class PopoverMotionTest : public DesktopTest {
 protected:
    enum class Kind { cut, uncut, translucent };

    void SetUp() override {
        DesktopTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        content_.swatches = {{{{20, 20}, {40, 40}}, kGreen}};
    }
    void TearDown() override {
        popover_.reset();
        DesktopTest::TearDown();
    }

    void open(Kind kind, const Rect& anchor) {
        popover_.reset();
        if (kind == Kind::uncut) connect({.shape = false});
        if (kind == Kind::translucent) {
            xcb_set_selection_owner(bystander_->get(), bystander_->open({0, 0, 1, 1}),
                                    bystander_->atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
            bystander_->sync();
            connect();
        }
        content_.size = {200, 120};
        content_.onTheWay.reset();
        popover_ = windowServer_->makePopoverWindow(content_, observer_);
        popover_->place(anchor);
        popover_->orderFront();
        repaint();
    }
    // The shown picture is that of now.
    void repaint() {
        content_.change();
        // The first turn may find the server still reading the last picture.
        for (int i = 0; i < 3; ++i)
            settle();
        waitForTheServer();
    }
    void move(double to, double now) {
        content_.size = {200, to};
        content_.onTheWay = Size{200, now};
        repaint();
    }
    void arrive() {
        content_.onTheWay.reset();
        repaint();
    }
    // The front window's place.
    PixelRect front() const { return bystander_->frameOf(bystander_->windows().back()); }
    bool shows(int x, int y, std::uint32_t pixel) const { return bystander_->pixelAt(x, y) == pixel; }

    SwatchContent content_;
    RecordingObserver observer_;
    std::unique_ptr<PopoverWindow> popover_;
};

TEST_F(PopoverMotionTest, HangsFromTheEdgeThatIsTowardsTheMiddleOfTheScreen) {
    open(Kind::cut, kHighAnchor);
    EXPECT_EQ(front(), (PixelRect{300, 100, 200, 120}));
    EXPECT_EQ(content_.most, (Size{Xvfb::kWidth, Xvfb::kHeight - 100 - 8}));
    popover_->orderOut();
    open(Kind::cut, kLowAnchor);
    EXPECT_EQ(front(), (PixelRect{300, kLowEdge - 120, 200, 120}));
    EXPECT_EQ(popover_->frame(), (Rect{{300, kLowEdge - 120}, {200, 120}}));
    EXPECT_EQ(content_.most, (Size{Xvfb::kWidth, kLowEdge - 8}));

    // A panel appears at the top.
    const std::uint32_t area[]{0, 40, Xvfb::kWidth, Xvfb::kHeight - 40};
    xcb_change_property(bystander_->get(), XCB_PROP_MODE_REPLACE, bystander_->root(),
                        bystander_->atom("_NET_WORKAREA"), XCB_ATOM_CARDINAL, 32, 4, area);
    bystander_->sync();
    EXPECT_TRUE(comes([&] { return content_.most == Size{Xvfb::kWidth, kLowEdge - 8 - 40}; }));
}

TEST_F(PopoverMotionTest, KeepsItsEdgeInOneWindowWhileItGrowsAndShrinks) {
    const xcb_window_t behind = bystander_->open({200, 0, 500, Xvfb::kHeight});
    for (const Kind kind : {Kind::cut, Kind::uncut, Kind::translucent}) {
        for (const bool isUp : {false, true}) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(kind) << (isUp ? " up" : " down"));
            open(kind, isUp ? kLowAnchor : kHighAnchor);
            const int around = kind == Kind::translucent ? 30 : 0;
            const auto frame = [&](int height) {
                return PixelRect{300 - around, (isUp ? kLowEdge - height : 100) - around, 200 + 2 * around,
                                 height + 2 * around};
            };
            // What is seen where the panel is not: the window behind, or what a compositor would put there.
            const std::uint32_t nothing = kind == Kind::translucent ? 0 : kRedPixel;
            const auto expectPanel = [&](int height) {
                const int top = isUp ? kLowEdge - height : 100;
                EXPECT_TRUE(shows(340, top + 40, kGreenPixel)) << height;
                const int beyond = isUp ? top - 30 - around : top + height + 30 + around;
                EXPECT_TRUE(shows(400, beyond, kRedPixel) || shows(400, beyond, nothing)) << height;
                EXPECT_FALSE(shows(400, isUp ? top + 3 : top + height - 4, kRedPixel)) << height;
                EXPECT_FALSE(shows(400, isUp ? top + 3 : top + height - 4, 0)) << height;
            };
            EXPECT_EQ(front(), frame(120));
            move(300, 160);
            EXPECT_EQ(front(), frame(kind == Kind::uncut ? 160 : 300));
            expectPanel(160);
            EXPECT_EQ(popover_->frame().size, (Size{200, 300}));
            // The pointer is where the picture is.
            content_.pointerEvents.clear();
            click(310, (isUp ? kLowEdge - 160 : 100) + 15);
            ASSERT_TRUE(comes([&] {
                return !content_.pointerEvents.empty() &&
                       content_.pointerEvents.back() == PointerEvent{PointerEvent::Kind::release, {10, 15}};
            }));
            click(310, isUp ? kLowEdge - 250 : 350);  // in the window, and not in the panel
            move(300, 240);
            EXPECT_EQ(content_.pointerEvents.back().kind, PointerEvent::Kind::leave);
            EXPECT_EQ(front(), frame(kind == Kind::uncut ? 240 : 300));
            expectPanel(240);
            arrive();
            EXPECT_EQ(front(), frame(300));
            expectPanel(300);
            move(90, 200);
            EXPECT_EQ(front(), frame(kind == Kind::uncut ? 200 : 300));
            expectPanel(200);
            arrive();
            EXPECT_EQ(front(), frame(90));
            expectPanel(90);
        }
    }
    bystander_->close(behind);
}

TEST_F(PopoverMotionTest, EachPictureOfAMotionIsWholeThoughOnlyItsDifferenceIsPainted) {
    for (const Kind kind : {Kind::cut, Kind::translucent}) {
        for (const Rect& anchor : {kHighAnchor, kLowAnchor}) {
            open(kind, anchor);
            for (const auto& [to, now] : {std::pair{300, 150},
                                          {300, 299},
                                          {300, 330},
                                          {300, 310},
                                          {140, 250},
                                          {140, 135},
                                          {140, 15},
                                          {140, 60},
                                          {140, 140}}) {
                move(to, now);
                const PixelRect all = front();
                const auto before = bystander_->pixels(all);
                appearance_.setDark(false);  // has everything painted anew
                repaint();
                const auto after = bystander_->pixels(all);
                ASSERT_EQ(front(), all);
                ASSERT_EQ(before.size(), after.size());
                std::size_t different = 0;
                for (std::size_t i = 0; i < before.size(); ++i) {
                    for (const int shift : {0, 8, 16}) {
                        const int a = (before[i] >> shift) & 0xFF;
                        const int b = (after[i] >> shift) & 0xFF;
                        different += std::abs(a - b) > 2 ? 1 : 0;
                    }
                }
                EXPECT_EQ(different, 0u) << to << " at " << now << ", kind " << static_cast<int>(kind);
            }
        }
    }
}

TEST_F(PopoverMotionTest, PicturesFollowEachOtherAtTheRateThatTheContentAsksFor) {
    using namespace std::chrono_literals;
    content_.rate = 50;
    open(Kind::cut, kHighAnchor);
    const std::size_t first = content_.times.size() - 1;
    ASSERT_TRUE(comes([&] { return content_.times.size() > first + 40; }));
    const auto took = content_.times[first + 40] - content_.times[first];
    EXPECT_GE(took, 40 * 20ms);
    EXPECT_LE(took, 40 * 20ms * 3) << "on a machine that is busy with other things";

    content_.rate = 0;
    ASSERT_TRUE(comes([&] {
        const int before = content_.pictures;
        turn(50ms);
        return content_.pictures == before;
    }));
    const int before = content_.pictures;
    turn(1000ms);
    EXPECT_EQ(content_.pictures, before) << "what stands still costs nothing";
}

TEST_F(PopoverMotionTest, NoPicturesAreMadeForNobody) {
    using namespace std::chrono_literals;
    content_.rate = 60;
    open(Kind::cut, kHighAnchor);
    const xcb_window_t popover = bystander_->windows().back();
    xcb_window_t cover = XCB_NONE;
    const struct {
        const char* name;
        std::function<void()> hide, show;
    } cases[] = {
        {"covered",
         [&] {
             cover = bystander_->open({250, 50, 400, 300});
         },
         [&] { bystander_->close(cover); }},
        {"taken off the screen",
         [&] {
             xcb_unmap_window(bystander_->get(), popover);
             bystander_->sync();
         },
         [&] {
             xcb_map_window(bystander_->get(), popover);
             bystander_->sync();
         }},
        {"behind a screen saver",
         [&] {
             EXPECT_EQ(runOn(xvfb_.display(), {"xset", "s", "activate"}), 0);
         },
         [&] {
             EXPECT_EQ(runOn(xvfb_.display(), {"xset", "s", "reset"}), 0);
         }},
    };
    for (const auto& c : cases) {
        c.hide();
        settle();
        turn(40ms);  // one that was on its way
        const int before = content_.pictures;
        turn(200ms);
        EXPECT_EQ(content_.pictures, before) << c.name;
        c.show();
        EXPECT_TRUE(comes([&] { return content_.pictures > before + 3; })) << c.name;
    }
    popover_->orderOut();
    const int before = content_.pictures;
    turn(100ms);
    EXPECT_EQ(content_.pictures, before) << "closed";
}

}  // namespace
}  // namespace norvane
