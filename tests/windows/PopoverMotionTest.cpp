#include "PaintedImage.h"
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
    PixelRect front() const { return bystander_->frameOf(bystander_->windows().back()); }
};

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
            EXPECT_EQ(content_.most.height, isUp ? kLowEdge - 8 : Xvfb::kHeight - 100 - 8);
            move(300, 160);
            expect(300, 160);
            EXPECT_EQ(popover_->frame().size, (Size{200, 300}));
            content_.pointerEvents.clear();
            click(310, top(160) + 15);
            ASSERT_TRUE(comesToTell({PointerEvent::Kind::release, {10, 15}})) << "where the picture is";
            click(310, isUp ? kLowEdge - 250 : 350);  // in the window, and not in the panel
            move(300, 240);
            EXPECT_EQ(content_.pointerEvents.back().kind, PointerEvent::Kind::leave);
            move(90, 200);
            expect(300, 200);
            content_.onTheWay.reset();
            repaint();
            expect(90, 90);
        }
    }
}

TEST_F(PopoverMotionTest, EachPictureOfAMotionIsWholeThoughOnlyItsDifferenceIsPainted) {
    for (const Kind kind : {Kind::cut, Kind::translucent}) {
        for (const Rect& anchor : {kHighAnchor, kLowAnchor}) {
            openAs(kind, anchor);
            for (const auto& [to, now] :
                 {std::pair{300, 150}, {300, 330}, {300, 310}, {140, 250}, {140, 15}, {140, 140}}) {
                move(to, now);
                const auto before = bystander_->pixels(front());
                // Has everything painted anew.
                for (const bool isDark : {true, false}) {
                    setDark(isDark);
                    repaint();
                }
                const auto after = bystander_->pixels(front());
                EXPECT_TRUE(
                    std::equal(before.begin(), before.end(), after.begin(), after.end(),
                               [](auto a, auto b) { return PaintedImage::largestBetween(a, b) <= 2; }))
                    << to << " at " << now << ", kind " << static_cast<int>(kind);
            }
        }
    }
}

TEST_F(PopoverMotionTest, NoPicturesAreMadeForNobody) {
    content_.rate = 60;
    show(kHighAnchor);
    const xcb_window_t popover = bystander_->windows().back();
    const auto onlyWhere = [&](const char* name, const auto& hide, const auto& showAgain) {
        hide();
        settle();
        turn(40ms);  // one that was on its way
        const int before = content_.pictures;
        turn(200ms);
        EXPECT_EQ(content_.pictures, before) << name;
        showAgain();
        EXPECT_TRUE(comes([&] { return content_.pictures > before + 3; })) << name;
    };
    const auto cover = bystander_->open({250, 50, 400, 300});
    // What changes there is no reason either.
    const auto covered = [&] { content_.change(); };
    const auto uncover = [&] { bystander_->close(cover); };
    onlyWhere("covered", covered, uncover);
    onlyWhere(
        "off", [&] { bystander_->unmap(popover); }, [&] { bystander_->map(popover); });
    onlyWhere(
        "dark", [&] { run("xset s activate"); }, [&] { run("xset s reset"); });
    onlyWhere(
        "closed", [&] { popover_->orderOut(); }, [&] { show(kHighAnchor); });
    run("xset s activate");
    EXPECT_FALSE(X11ScreenLight(*connection_, clock_, mainQueue_).isLit()) << "one that begins in the dark";
}

}  // namespace
}  // namespace norvane
