#include "views/Animation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "views/Animated.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr MonotonicInstant kStart{std::chrono::seconds(1000)};

double done(const Animation& animation, std::chrono::nanoseconds time) {
    return 1 - animation.restAfter(time).way;
}

// Each point is on the curve: x and y of the cubic Bézier curve at the same parameter, worked out by hand for
// parameters of a quarter, a half and three quarters.
TEST(Animation, FollowsItsCurve) {
    struct Case {
        const char* name;
        Animation animation;
        double time, want;  // seconds of one
    };
    const Animation out = Animation::easeOut(1);
    const Animation inOut = Animation::easeInOut(1);
    for (const Case& c : {
             Case{"linear", Animation::linear(1), 0.3, 0.3},
             Case{"ease-out begins", out, 0, 0},
             Case{"ease-out at a quarter", out, 0.0971875, 0.15625},
             Case{"ease-out at a half", out, 0.3425, 0.5},
             Case{"ease-out at three quarters", out, 0.6665625, 0.84375},
             Case{"ease-out is there", out, 1, 1},
             Case{"ease-in-out at a quarter", inOut, 0.2743750, 0.15625},
             Case{"ease-in-out in the middle", inOut, 0.5, 0.5},
             Case{"ease-in-out at three quarters", inOut, 0.7256250, 0.84375},
             Case{"stays there", inOut, 5, 1},
             Case{"has not begun", inOut, -1, 0},
         }) {
        EXPECT_NEAR(done(c.animation, std::chrono::nanoseconds(std::llround(c.time * 1e9))), c.want, 1e-6)
            << c.name;
    }
}

TEST(Animation, ASpringSwingsByItsDamping) {
    struct Case {
        double damping;
        double highest;  // the first overshoot of an oscillator: e to the power of -pi d / sqrt(1 - d^2)
    };
    for (const Case& c :
         {Case{0.3, 0.372326}, {0.5, 0.163034}, {0.7, 0.045988}, {0.85, 0.006284}, {1, 0}, {2, 0}}) {
        const Animation spring = Animation::spring(0.5, c.damping);
        double highest = 0;
        for (auto time = 0ms; time < 5s; time += 1ms)
            highest = std::max(highest, done(spring, time) - 1);
        EXPECT_NEAR(highest, c.highest, 2e-4) << c.damping;
        EXPECT_TRUE(spring.isOverAfter(60s)) << c.damping;
    }
    // The undamped period is the response: one of half the response is there in half the time.
    for (const auto time : {30ms, 100ms, 250ms}) {
        EXPECT_NEAR(done(Animation::spring(0.4, 0.7), time), done(Animation::spring(0.8, 0.7), 2 * time),
                    1e-9);
    }
}

TEST(Animation, RepeatsAndReverses) {
    struct Case {
        std::chrono::milliseconds time;
        double forever, thereAndBack;
    };
    const Animation linear = Animation::linear(2);
    for (const Case& c : {Case{0ms, 0, 0},
                          {500ms, 0.25, 0.25},
                          {1500ms, 0.75, 0.75},
                          {2500ms, 0.25, 0.75},
                          {3500ms, 0.75, 0.25},
                          {4500ms, 0.25, 0.25}}) {
        EXPECT_NEAR(done(linear.forever(), c.time), c.forever, 1e-9) << c.time.count();
        EXPECT_NEAR(done(linear.foreverThereAndBack(), c.time), c.thereAndBack, 1e-9) << c.time.count();
    }
    EXPECT_FALSE(linear.forever().isOverAfter(24h));
}

TEST(Animation, OfNoTimeIsOverAtOnce) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    for (const Animation& animation :
         {Animation::linear(0), Animation::easeOut(-1), Animation::easeInOut(kNaN),
          Animation::linear(kInfinite), Animation::spring(0, 0.7), Animation::spring(-1, 0.7),
          Animation::spring(kNaN, 1), Animation::linear(0).forever()}) {
        EXPECT_TRUE(animation.isOverAfter(0ns));
        EXPECT_EQ(animation.restAfter(0ns).way, 0);
    }
    for (const double damping : {0.0, -1.0, kNaN, kInfinite, 1e-9, 1e9})
        EXPECT_TRUE(Animation::spring(0.5, damping).isOverAfter(2h)) << damping;
}

TEST(Animated, GoesOnFromWhereItStands) {
    Animated<double> value(10);
    EXPECT_FALSE(value.isMovingAt(kStart));
    value.animateTo(20, Animation::linear(1), kStart);
    EXPECT_EQ(value.target(), 20);
    EXPECT_NEAR(value.valueAt(kStart + 500ms), 15, 1e-9);
    value.animateTo(0, Animation::linear(1), kStart + 500ms);
    EXPECT_NEAR(value.valueAt(kStart + 500ms), 15, 1e-9) << "nothing jumps";
    EXPECT_NEAR(value.valueAt(kStart + 1s), 7.5, 1e-9);
    EXPECT_EQ(value.valueAt(kStart + 1500ms), 0);
    EXPECT_FALSE(value.isMovingAt(kStart + 1500ms));
    value.animateTo(3, Animation::linear(0), kStart + 2s);
    EXPECT_EQ(value.valueAt(kStart + 2s), 3) << "no time, no movement";
    value.animateTo(5, Animation::linear(1), kStart + 3s);
    EXPECT_EQ(value.valueAt(kStart + 2s), 3) << "before it sets out";
    value.jumpTo(9);
    EXPECT_EQ(value.valueAt(kStart + 3s), 9);
}

TEST(Animated, KeepsItsSpeedFromOneSpringToTheNext) {
    const Animation spring = Animation::spring(0.5, 0.7);
    Animated<double> value(0);
    value.animateTo(100, spring, kStart);
    const MonotonicInstant turn = kStart + 100ms;
    const double before = (value.valueAt(turn) - value.valueAt(turn - 1ms)) / 0.001;
    value.animateTo(0, spring, turn);
    const double after = (value.valueAt(turn + 1ms) - value.valueAt(turn)) / 0.001;
    EXPECT_GT(before, 300);
    EXPECT_NEAR(after, before, 0.05 * before) << "it swings on before it turns back";
    EXPECT_EQ(value.valueAt(turn + 10s), 0);
}

TEST(Animated, AChangeAtOnceMovesARunningMovementAlong) {
    Animated<double> value(0);
    value.animateTo(10, Animation::linear(1), kStart);
    value.moveTo(110, kStart + 500ms);
    EXPECT_NEAR(value.valueAt(kStart + 500ms), 105, 1e-9);
    EXPECT_NEAR(value.valueAt(kStart + 750ms), 107.5, 1e-9);
    EXPECT_EQ(value.valueAt(kStart + 1s), 110);
    value.moveTo(50, kStart + 2s);
    EXPECT_EQ(value.valueAt(kStart + 2s), 50) << "at rest it is there at once";
}

TEST(Animated, ColoursFadeWithoutPassingThroughBlack) {
    Animated<Color> color(Color::clear());
    const Color red{1, 0, 0, 1};
    color.animateTo(red, Animation::linear(1), kStart);
    const Color half = color.valueAt(kStart + 500ms);
    EXPECT_NEAR(half.red, 1, 1e-9);
    EXPECT_NEAR(half.alpha, 0.5, 1e-9);
    EXPECT_EQ(color.valueAt(kStart), Color::clear());
    color.jumpTo(red);
    color.animateTo({0, 0, 1, 1}, Animation::linear(1), kStart);
    EXPECT_NEAR(color.valueAt(kStart + 250ms).red, 0.75, 1e-9);
    EXPECT_NEAR(color.valueAt(kStart + 250ms).blue, 0.25, 1e-9);
    // A spring that swings beyond its end makes no colour that there isn't.
    color.animateTo({1, 1, 1, 1}, Animation::spring(0.5, 0.2), kStart + 2s);
    for (auto time = 0ms; time < 2s; time += 10ms) {
        const Color now = color.valueAt(kStart + 2s + time);
        EXPECT_TRUE(now.red >= 0 && now.red <= 1 && now.green <= 1 && now.alpha <= 1);
    }
}

}  // namespace
}  // namespace norvane
