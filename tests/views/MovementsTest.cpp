#include <algorithm>
#include <cmath>
#include <limits>

#include "views/Animated.h"
#include "views/ScreenTest.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Names = std::vector<std::string>;

const Animation kLinear = Animation::linear(1);
const Animation kFast = Animation::linear(0.5);
const Animation kSpring = Animation::spring(0.5, 0.7);

// The part of the way that is done.
double done(const Animation& animation, double seconds) {
    return 1 - animation.restAfter(std::chrono::nanoseconds(std::llround(seconds * 1e9))).way;
}

// Each point of a curve is x and y of the cubic Bézier curve at the same parameter, worked out by hand for
// parameters of a quarter, a half and three quarters.
TEST(Animation, FollowsItsCurve) {
    struct Case {
        const char* name;
        Animation animation;
        double seconds, want;
    };
    for (const Case& c :
         {Case{"out, at a quarter", Animation::easeOut(1), 0.0971875, 0.15625},
          Case{"out, at a half", Animation::easeOut(1), 0.3425, 0.5},
          Case{"in and out, at three quarters", Animation::easeInOut(1), 0.725625, 0.84375},
          Case{"stays there", Animation::easeInOut(1), 5, 1}, Case{"has not begun", kLinear, -1, 0},
          Case{"is on its way", kLinear, 0.3, 0.3}, Case{"begins again", kLinear.forever(), 1.25, 0.25},
          Case{"comes back", kLinear.foreverThereAndBack(), 1.25, 0.75},
          Case{"sets out again", kLinear.foreverThereAndBack(), 2.25, 0.25}})
        EXPECT_NEAR(done(c.animation, c.seconds), c.want, 1e-6) << c.name;
}

TEST(Animation, ASpringSwingsByItsDamping) {
    // The first overshoot of an oscillator: e to the power of -pi d / sqrt(1 - d^2).
    for (const auto& [damping, want] :
         {std::pair{0.3, 0.372326}, {0.7, 0.045988}, {0.85, 0.006284}, {1.0, 0.0}, {2.0, 0.0}}) {
        double highest = 0;
        for (double time = 0; time < 5; time += 0.001)
            highest = std::max(highest, done(Animation::spring(0.5, damping), time) - 1);
        EXPECT_NEAR(highest, want, 2e-4) << damping;
        EXPECT_NEAR(done(Animation::spring(0.5, damping), 2), 1, 0.01) << damping;
    }
    const Animation twice = Animation::spring(1, 0.7);
    EXPECT_NEAR(done(kSpring, 0.1), done(twice, 0.2), 1e-9) << "the undamped period is the response";
}

TEST(Animation, OfNoTimeIsOverAtOnce) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    for (const Animation& animation :
         {Animation::easeOut(-1), Animation::easeInOut(kNaN), Animation::linear(kInfinite),
          Animation::spring(-1, 0.7), Animation::spring(kNaN, 1), Animation::linear(0).forever()}) {
        EXPECT_TRUE(animation.isOverAfter(0ns) && animation.restAfter(0ns).way == 0);
    }
    for (const double damping : {0.0, -1.0, kNaN, kInfinite, 1e-9, 1e9})
        EXPECT_TRUE(Animation::spring(0.5, damping).isOverAfter(2h)) << damping;
}

TEST(Animated, KeepsItsSpeedFromOneSpringToTheNext) {
    const MonotonicInstant start{1000s};
    const MonotonicInstant turn = start + 100ms;
    Animated<double> value(0);
    value.animateTo(100, kSpring, start);
    EXPECT_EQ(value.valueAt(start - 1s), 0) << "before it sets out";
    const double before = value.valueAt(turn) - value.valueAt(turn - 1ms);
    value.animateTo(0, kSpring, turn);
    const double after = value.valueAt(turn + 1ms) - value.valueAt(turn);
    EXPECT_GT(before, 0.3);
    EXPECT_NEAR(after, before, 0.05 * before) << "it swings on before it turns back";
    EXPECT_EQ(value.valueAt(turn + 10s), 0);

    Animated<Color> color(Color::clear());
    color.animateTo({1, 0, 0, 1}, kLinear, start);
    EXPECT_NEAR(color.valueAt(start + 500ms).red, 1, 1e-9) << "colours do not fade through black";
    EXPECT_NEAR(color.valueAt(start + 500ms).alpha, 0.5, 1e-9);
    color.animateTo({1, 1, 1, 1}, Animation::spring(0.5, 0.2), start + 2s);
    for (auto time = start + 2s; time < start + 4s; time += 10ms)
        EXPECT_LE(color.valueAt(time).green, 1) << "a spring makes none that there isn't";
}

// A line below a gap that is painted in a colour, and named ones below it.
class MovementsTest : public ScreenTest {
 protected:
    MovementsTest() { show(); }
    Element body() override {
        return vstack({.alignment = Alignment::start},
                      shape(Outline::rectangle(), {.fill = fill_}).frame({.width = 100, .height = gap_}),
                      text("line", kTen).padding({.left = indent_}).opacity(opacity_),
                      forEach(names_, [this](const std::string& name) {
                          return text(name, kTen).transition(transition_).id(name);
                      }));
    }
    void expectLine(double y, double opacity, const char* why = "") {
        paint();
        EXPECT_NEAR(frameOf("line").minY(), y, 1e-9) << why;
        EXPECT_NEAR(shown("line").opacity, opacity, 1e-9) << why;
    }
    double rateAfter(std::chrono::nanoseconds time) {
        paintAfter(time);
        return view_.frameRate();
    }

    double gap_ = 10;
    double indent_ = 0;
    double opacity_ = 1;
    Color fill_{1, 0, 0, 1};
    Names names_;
    Transition transition_;
};

TEST_F(MovementsTest, AnAnimatedChangeMovesEverythingFromWhereItStands) {
    animate(kLinear, [&] {
        gap_ = 50;
        opacity_ = 0.5;
        fill_ = {0, 0, 1, 1};
    });
    expectLine(10, 1, "it sets out from there");
    advance(500ms);
    expectLine(30, 0.75);
    EXPECT_NEAR(std::get<FillShape>(picture_.items.at(0).command).fill.from.blue, 0.5, 1e-9);
    EXPECT_NEAR(picture_.size.height, 42.5, 1e-9) << "the whole picture grows with it";
    animate(kLinear, [&] { gap_ = 10; });
    view_.invalidate();
    expectLine(30, 0.75, "back from where it stands");
    advance(500ms);
    view_.change([&] { indent_ = 7; });
    expectLine(20, 0.5, "what has not changed again goes on as it did");
    EXPECT_EQ(frameOf("line").minX(), 7);
    view_.change([&] { gap_ = 20; });
    expectLine(30, 0.5, "a place that is another one at once takes the movement along");
    advance(500ms);
    expectLine(20, 0.5);
    EXPECT_EQ(picture_.size, (Size{100, 32.5}));
}

TEST_F(MovementsTest, TwoChangesInOneTurnEachKeepTheirOwnAnimation) {
    view_.animate(kLinear, [&] { gap_ = 50; });
    animate(kFast, [&] { opacity_ = 0.5; });
    advance(250ms);
    expectLine(20, 0.75);
    // The same place under two of them: the later one, from where it stands.
    view_.animate(kLinear, [&] { gap_ = 100; });
    animate(kFast, [&] { gap_ = 0; });
    advance(250ms);
    expectLine(10, 0.5);
    advance(10s);
    view_.animate(kLinear, [&] { opacity_ = 1; });
    change([&] { gap_ = 30; });
    advance(500ms);
    expectLine(30, 0.75, "one that is animated and one that is not");
}

TEST_F(MovementsTest, NobodySeesThoseOfAClosedScreen) {
    view_.animate(kLinear, [&] { opacity_ = 0.5; });
    view_.disappear();
    view_.animate(kLinear, [&] { gap_ = 50; });
    show();
    expectLine(50, 0.5);
}

TEST_F(MovementsTest, WhatComesAndGoesTakesItsEdgeAndMakesRoom) {
    struct Case {
        const char* name;
        Transition transition;
        Point away;  // where it stands at half the way, from its place
        double opacity;
    };
    change([&] { names_ = {"a", "b"}; });
    for (const Case& c : {Case{"fade", Transition::opacity(), {0, 0}, 0.5},
                          Case{"bottom", Transition::move(Edge::bottom), {0, 6.25}, 1},
                          Case{"leading", Transition::move(Edge::leading), {-6, 0}, 1},
                          Case{"trailing", Transition::move(Edge::trailing), {6, 0}, 1},
                          Case{"both", Transition::move(Edge::top).withOpacity(), {0, -6.25}, 0.5}}) {
        transition_ = c.transition;
        for (const bool comes : {true, false}) {
            SCOPED_TRACE(std::string(c.name) + (comes ? ", coming" : ", going"));
            animate(kLinear, [&] { names_ = comes ? Names{"a", "it", "b"} : Names{"a", "b"}; });
            paintAfter(500ms);
            EXPECT_NEAR(frameOf("it").minX(), c.away.x, 1e-9);
            EXPECT_NEAR(frameOf("it").minY(), 35 + c.away.y, 1e-9) << "what goes keeps its place";
            EXPECT_NEAR(shown("it").opacity, c.opacity, 1e-9);
            EXPECT_NEAR(frameOf("b").minY(), 41.25, 1e-9) << "half a line down";
            EXPECT_EQ(accessible("it").has_value(), comes);
            paintAfter(1s);
            EXPECT_EQ(shows("it"), comes);
        }
    }
    change([&] { transition_ = Transition::none(); });
    animate(kLinear, [&] { names_ = {}; });
    EXPECT_FALSE(shows("a")) << "without a transition it is gone at once";
}

TEST_F(MovementsTest, GoingBackAndForthQuicklyPilesNothingUp) {
    for (int i = 0; i < 100; ++i) {
        animate(kSpring, [&] { names_ = i % 2 == 0 ? Names{"a", "b"} : Names{"a"}; });
        paintAfter(15ms);
        ASSERT_LT(picture_.items.size(), 20U);
    }
    EXPECT_EQ(rateAfter(10s), 0);
    EXPECT_FALSE(shows("b"));
}

TEST_F(MovementsTest, FramesAreWantedWhileSomethingMovesAndNoLonger) {
    struct Case {
        const char* name;
        Animation animation;
        std::function<void()> change;
        double rate;
        std::chrono::milliseconds end;  // it still moves a hundredth of a second before
    };
    const Case cases[] = {
        {"a spring, for -ln(1e-4) / (0.7 * 2 pi / 0.5)", kSpring, [&] { gap_ += 5; }, 60, 1048ms},
        {"a fade", Animation::easeOut(0.3), [&] { names_ = {"a"}; }, 60, 300ms},
        {"a fade out", kFast, [&] { names_ = {}; }, 30, 500ms},
        {"nothing that is seen", kSpring, [] {}, 0, 10ms}};
    for (const Case& c : cases) {
        animate(c.animation, c.change);
        EXPECT_EQ(rateAfter(c.end - 10ms), c.rate) << c.name;
        EXPECT_EQ(rateAfter(20ms), 0) << c.name;
    }
    animate(Animation::easeInOut(1).foreverThereAndBack(), [&] {
        gap_ = 50;
        opacity_ = 0.2;
    });
    advance(500ms);
    expectLine(50, 0.6, "what has no end is for looks alone");
    EXPECT_EQ(rateAfter(24h), 15);
    animate(kSpring, [&] { indent_ += 5; });
    EXPECT_EQ(view_.frameRate(), 60) << "the livelier one counts";
    EXPECT_EQ(rateAfter(2s), 15);
    view_.disappear();
    EXPECT_EQ(view_.frameRate(), 0) << "nobody looks";
    show();
    EXPECT_EQ(view_.frameRate(), 15) << "and goes on";
    machine_.appearance.setReducesMotion(true);
    EXPECT_EQ(rateAfter({}), 0) << "it stands for a user who wants no motion";
    animate(kLinear, [&] { indent_ = 30; });
    EXPECT_EQ(frameOf("line").minX(), 30) << "at once";
    EXPECT_EQ(view_.frameRate(), 0);
    machine_.appearance.setReducesMotion(false);
    EXPECT_EQ(rateAfter({}), 15);
    animate(kLinear, [&] { opacity_ = 1; });
    EXPECT_EQ(rateAfter(2s), 0);
}

}  // namespace
}  // namespace norvane
