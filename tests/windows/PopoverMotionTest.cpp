#include <cstdlib>

#include "PopoverFixture.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr Rect kHighAnchor = anchorAbove(400, 100);
constexpr Rect kLowAnchor{{373, 670}, {54, 22}};
constexpr int kLowEdge = 664;

// A popover whose content grows, shrinks and moves, on every kind of screen.
class PopoverMotionTest : public PopoverFixture {
 protected:
    enum class Kind { cut, uncut, translucent };

    void openAs(Kind kind, const Rect& anchor) {
        if (kind == Kind::translucent) startCompositor();
        content_.size = {200, 120};
        content_.onTheWay.reset();
        makeOn({.shape = kind != Kind::uncut});
        show(anchor);
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
    PixelRect front() const { return bystander_->frameOf(bystander_->windows().back()); }
};

TEST_F(PopoverMotionTest, HangsFromTheEdgeThatIsTowardsTheMiddleOfTheScreen) {
    show(kHighAnchor);
    EXPECT_EQ(front(), kPopover);
    EXPECT_EQ(content_.most, (Size{Xvfb::kWidth, Xvfb::kHeight - 100 - 8}));
    popover_->orderOut();
    show(kLowAnchor);
    EXPECT_EQ(front(), (PixelRect{300, kLowEdge - 120, 200, 120}));
    EXPECT_EQ(popover_->frame(), (Rect{{300, kLowEdge - 120}, {200, 120}}));
    EXPECT_EQ(content_.most, (Size{Xvfb::kWidth, kLowEdge - 8}));
    bystander_->setNumbers(bystander_->root(), "_NET_WORKAREA", {0, 40, Xvfb::kWidth, Xvfb::kHeight - 40});
    EXPECT_TRUE(comes([&] {
        return content_.most == Size{Xvfb::kWidth, kLowEdge - 8 - 40};
    })) << "a panel appears at the top";
}

TEST_F(PopoverMotionTest, KeepsItsEdgeInOneWindowWhileItGrowsAndShrinks) {
    bystander_->open({200, 0, 500, Xvfb::kHeight});
    for (const Kind kind : {Kind::cut, Kind::uncut, Kind::translucent}) {
        for (const bool isUp : {false, true}) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(kind) << (isUp ? " up" : " down"));
            openAs(kind, isUp ? kLowAnchor : kHighAnchor);
            const int around = kind == Kind::translucent ? 30 : 0;
            const auto top = [&](int height) { return isUp ? kLowEdge - height : 100; };
            // A window of that height, cut down to the panel where that can be.
            const auto expect = [&](int room, int panel) {
                const int height = kind == Kind::uncut ? panel : room;
                EXPECT_EQ(front(), (PixelRect{300 - around, top(height) - around, 200 + 2 * around,
                                              height + 2 * around}));
                EXPECT_TRUE(shows(340, top(panel) + 40, kGreenPixel)) << panel;
                const int beyond = isUp ? top(panel) - 30 - around : top(panel) + panel + 30 + around;
                // Of a translucent window a compositor would make something.
                EXPECT_TRUE(shows(400, beyond, kRedPixel) || (around != 0 && shows(400, beyond, 0))) << panel;
                const int within = isUp ? top(panel) + 3 : top(panel) + panel - 4;
                EXPECT_FALSE(shows(400, within, kRedPixel) || shows(400, within, 0)) << panel;
            };
            expect(120, 120);
            move(300, 160);
            expect(300, 160);
            EXPECT_EQ(popover_->frame().size, (Size{200, 300}));
            content_.pointerEvents.clear();
            click(310, top(160) + 15);
            ASSERT_TRUE(comesToTell({PointerEvent::Kind::release, {10, 15}})) << "where the picture is";
            click(310,
                  isUp ? kLowEdge - 250 : 350);  // in the window, and not in the panel
            move(300, 240);
            EXPECT_EQ(content_.pointerEvents.back().kind, PointerEvent::Kind::leave);
            expect(300, 240);
            arrive();
            expect(300, 300);
            move(90, 200);
            expect(300, 200);
            arrive();
            expect(90, 90);
        }
    }
}

TEST_F(PopoverMotionTest, EachPictureOfAMotionIsWholeThoughOnlyItsDifferenceIsPainted) {
    for (const Kind kind : {Kind::cut, Kind::translucent}) {
        for (const Rect& anchor : {kHighAnchor, kLowAnchor}) {
            openAs(kind, anchor);
            for (const auto& [to, now] : {std::pair{300, 150},
                                          {300, 299},
                                          {300, 330},
                                          {300, 310},
                                          {140, 250},
                                          {140, 135},
                                          {140, 15},
                                          {140, 140}}) {
                move(to, now);
                const PixelRect all = front();
                const auto before = bystander_->pixels(all);
                appearance_.setDark(false);  // has everything painted anew
                repaint();
                const auto after = bystander_->pixels(all);
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
    content_.rate = 50;
    show(kHighAnchor);
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
    content_.rate = 60;
    show(kHighAnchor);
    const xcb_window_t popover = bystander_->windows().back();
    xcb_window_t cover = XCB_NONE;
    const auto screenSaver = [this](const char* what) {
        EXPECT_EQ(runOn(xvfb_.display(), {"xset", "s", what}), 0);
    };
    const struct {
        const char* name;
        std::function<void()> hide, show;
    } cases[] = {
        {"covered",
         [&] {
             cover = bystander_->open({250, 50, 400, 300});
         },
         [&] { bystander_->close(cover); }},
        {"taken off the screen", [&] { bystander_->unmap(popover); }, [&] { bystander_->map(popover); }},
        {"behind a screen saver", [&] { screenSaver("activate"); }, [&] { screenSaver("reset"); }},
        {"closed", [&] { popover_->orderOut(); }, [&] { show(kHighAnchor); }},
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
}

}  // namespace
}  // namespace norvane
