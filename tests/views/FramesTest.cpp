#include <algorithm>
#include <functional>

#include "views/Button.h"
#include "views/ScreenTest.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class FramesTest : public ScreenTest {
 protected:
    Element body() override {
        return vstack(
            {},  //
            shape(Outline::capsule(), {.fill = fill_, .shadows = {{.paint = Ink::green, .radius = glow_}}})
                .frame({.width = 100, .height = height_}),
            text("text", kTen).offset({offset_, 0}), when(hasMore_, [] { return text("more", kTen); }));
    }
    double rateAfter(std::chrono::nanoseconds time) {
        advance(time);
        paint();
        return view_.frameRate();
    }

    Color fill_{1, 0, 0, 1};
    double glow_ = 2;
    double height_ = 10;
    double offset_ = 0;
    bool hasMore_ = false;
};

TEST_F(FramesTest, AreWantedWhileSomethingMovesAndNoLonger) {
    struct Case {
        const char* name;
        Animation animation;
        std::function<void()> change;
        double rate;
        std::chrono::milliseconds end;  // it still moves a hundredth of a second before
    };
    show();
    EXPECT_EQ(view_.frameRate(), 0);
    const Animation spring = Animation::spring(0.5, 0.7);
    const auto springs = std::chrono::milliseconds(1048);  // -ln(1e-4) / (0.7 * 2 pi / 0.5)
    for (const Case& c : {Case{"a spring", spring, [&] { height_ += 5; }, 60, springs},
                          Case{"a fade", Animation::easeOut(0.3), [&] { hasMore_ = true; }, 60, 300ms},
                          Case{"a fade out", Animation::easeInOut(0.3), [&] { hasMore_ = false; }, 60, 300ms},
                          Case{"a colour", Animation::easeInOut(0.2),
                               [&] {
                                   fill_ = {0, 0, 1, 1};
                               },
                               60, 200ms},
                          Case{"an even movement", Animation::linear(2), [&] { offset_ = 30; }, 30, 2000ms},
                          Case{"nothing that is seen", spring, [] {}, 0, 0ms}}) {
        view_.animate(c.animation, c.change);
        paint();
        EXPECT_EQ(view_.frameRate(), c.rate) << c.name;
        EXPECT_EQ(rateAfter(std::max(c.end - 10ms, 0ms)), c.rate) << c.name;
        EXPECT_EQ(rateAfter(20ms), 0) << c.name;
    }
    view_.animate(Animation::easeInOut(2).foreverThereAndBack(), [&] { glow_ = 8; });
    paint();
    EXPECT_EQ(view_.frameRate(), 15) << "breathing";
    EXPECT_EQ(rateAfter(24h), 15);
    view_.animate(spring, [&] { height_ += 5; });
    paint();
    EXPECT_EQ(view_.frameRate(), 60) << "the livelier one counts";
    EXPECT_EQ(rateAfter(2s), 15);
    view_.disappear();
    EXPECT_EQ(view_.frameRate(), 0) << "nobody looks";
    show();
    EXPECT_EQ(view_.frameRate(), 15) << "and breathes on";
    view_.animate(Animation::easeOut(0.1), [&] { glow_ = 2; });
    paint();
    EXPECT_EQ(rateAfter(200ms), 0);
}

TEST_F(FramesTest, NothingMovesForAUserWhoWantsNoMotion) {
    show();
    view_.animate(Animation::easeInOut(2).foreverThereAndBack(), [&] { glow_ = 8; });
    paint();
    EXPECT_EQ(view_.frameRate(), 15);
    machine_.appearance.setReducesMotion(true);
    paint();
    EXPECT_EQ(view_.frameRate(), 0) << "what breathed stands";
    const DisplayList before = picture_;
    view_.animate(Animation::easeOut(1), [&] { offset_ = 30; });
    paint();
    EXPECT_NE(picture_, before) << "at once";
    EXPECT_EQ(rateAfter(10ms), 0);
    const DisplayList there = picture_;
    paintAfter(2s);
    EXPECT_EQ(picture_, there);
    machine_.appearance.setReducesMotion(false);
    paint();
    EXPECT_EQ(view_.frameRate(), 15) << "and breathes again";
}

TEST_F(FramesTest, ManyChangesAreToldAndEvaluatedOnce) {
    int told = 0;
    view_.setChangeHandler([&] { ++told; });
    EXPECT_EQ(evaluations_, 0);
    EXPECT_EQ(view_.fittingSize({1000, 1000}), (Size{100, 22.5}));
    paint();
    paint();
    EXPECT_EQ(evaluations_, 1);
    EXPECT_EQ(told, 0);
    view_.invalidate();
    view_.invalidate();
    EXPECT_EQ(told, 2);
    EXPECT_EQ(evaluations_, 1);
    paint();
    EXPECT_EQ(evaluations_, 2);
    machine_.appearance.setDark(true);
    EXPECT_EQ(told, 3);
    const DisplayList light = picture_;
    EXPECT_NE(paint(), light);
    EXPECT_EQ(picture_.items.size(), light.items.size());
}

}  // namespace
}  // namespace norvane
