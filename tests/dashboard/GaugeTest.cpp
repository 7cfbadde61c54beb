#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "dashboard/ArdoNeonBar.h"
#include "dashboard/VelocityBar.h"
#include "dashboard/WidgetRingView.h"
#include "OddNumbers.h"
#include "ShownElement.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr Size kBarSize{200, 10};
constexpr Size kRingSize{100, 120};
constexpr Color kRed{1, 0, 0, 1};
constexpr Color kSky{0.25, 0.5, 1, 1};

// The part of the bar that the last shape in it fills: with nothing in it the track is the only one.
double filled(ShownElement& shown) {
    const auto fills = shown.all<FillShape>();
    if (fills.size() < 2) return 0;
    return std::get<RoundedRect>(fills.back().shape).rect.size.width / kBarSize.width;
}

// Where the ring's arc ends, in turns: the second line after the track.
double arcEnd(ShownElement& shown) {
    const auto lines = shown.all<StrokeShape>();
    return lines.size() < 2 ? 0 : std::get<Arc>(lines.back().shape).to;
}

TEST(Gauge, ABarShowsThePartAndAVelocityBarSpreadsTwoDecades) {
    for (const auto& [value, total, ratio] : {std::array{0.0, 100.0, 0.0},
                                              {150, 100, 1},
                                              {-5, 100, 0},
                                              {5, 0, 0},
                                              {-5, -10, 0},
                                              {kNaN, 100, 0},
                                              {5, kNaN, 0},
                                              {kInfinite, kInfinite, 0},
                                              {1e300, 1e-300, 1}})
        EXPECT_EQ(ArdoNeonBar::ratio(value, total), ratio) << value << " of " << total;
    for (const auto& [speed, fill] :
         {std::pair{-3.0, 0.0}, {1, 0}, {std::sqrt(10.0), 0.25}, {100, 1}, {kInfinite, 1}, {kNaN, 0}})
        EXPECT_NEAR(VelocityBar::fill(speed), fill, 1e-12) << speed;
}

TEST(Gauge, GrowsFromEmptyAndGlidesToEachNewValue) {
    double value = 80;
    ShownElement shown(kBarSize, [&] { return ArdoNeonBar{value, 100, kRed}.body(); });
    shown.appear();
    EXPECT_EQ(filled(shown), 0);
    double before = 0;
    for (int step = 0; step < 5; ++step) {
        shown.advance(100ms);
        EXPECT_GT(filled(shown), before);
        before = filled(shown);
    }
    EXPECT_LT(before, 0.8) << "it takes 0.55 s";
    shown.advance(50ms);
    EXPECT_DOUBLE_EQ(filled(shown), 0.8);

    shown.change([&] { value = 20; });
    EXPECT_DOUBLE_EQ(filled(shown), 0.8);
    shown.advance(200ms);
    EXPECT_GT(filled(shown), 0.2);
    EXPECT_LT(filled(shown), 0.6) << "fast at first";
    shown.advance(350ms);
    EXPECT_DOUBLE_EQ(filled(shown), 0.2);
}

TEST(Gauge, BeginsAsADotWithinTheRoundEndOfItsTrackWhereverItGoes) {
    for (const double value : {30.0, 100.0}) {
        ShownElement shown(kBarSize, [&] { return ArdoNeonBar{value, 100, kRed}.body(); });
        shown.appear();
        shown.advance(10ms);
        const auto dot = std::get<RoundedRect>(shown.all<FillShape>().back().shape);
        ASSERT_LT(dot.rect.size.width, kBarSize.height) << value;
        EXPECT_EQ(dot.rect.size.height, dot.rect.size.width) << value;
    }
}

TEST(Gauge, AValueThatChangesBeforeTheOpeningGetsItsTurnIsTheOneThatItOpensTo) {
    double value = 80;
    ShownElement shown(kBarSize, [&] { return ArdoNeonBar{value, 100, kRed}.body(); });
    shown.view.appear();
    shown.picture();  // it has appeared, and the main queue has not come to it
    shown.view.change([&] { value = 30; });
    shown.settle();
    EXPECT_EQ(filled(shown), 0);
    double most = 0;
    for (int step = 0; step < 10; ++step) {
        shown.advance(100ms);
        most = std::max(most, filled(shown));
    }
    EXPECT_DOUBLE_EQ(filled(shown), 0.3);
    EXPECT_DOUBLE_EQ(most, 0.3);
}

TEST(Gauge, IsWhereItWasWhenItIsShownAgain) {
    double value = 60;
    ShownElement shown(kBarSize, [&] { return ArdoNeonBar{value, 100, kRed}.body(); });
    shown.appear();
    shown.advance(1s);
    shown.view.disappear();
    shown.machine.advance(1h);
    shown.view.appear();
    EXPECT_DOUBLE_EQ(filled(shown), 0.6) << "in the first picture";
    shown.advance(200ms);
    EXPECT_DOUBLE_EQ(filled(shown), 0.6);

    shown.view.disappear();
    shown.view.change([&] { value = 10; });
    shown.machine.advance(1h);
    shown.view.appear();
    EXPECT_DOUBLE_EQ(filled(shown), 0.6) << "it sets out when it is seen";
    shown.settle();
    shown.advance(550ms);
    EXPECT_DOUBLE_EQ(filled(shown), 0.1);
}

TEST(Gauge, GoesOnBreathingWhileItsValueAndItsColorChange) {
    double value = 50;
    Color color = kRed;
    ShownElement shown(kBarSize, [&] { return ArdoNeonBar{value, 100, color}.body(); });
    shown.appear();
    shown.advance(1s);
    shown.change([&] {
        value = 90;
        color = kSky;
    });
    shown.advance(1s);
    for (const auto& [radius, opacity] : {std::pair{6.0, 0.8}, {2, 0.2}}) {
        const DrawShadow glow = shown.all<DrawShadow>().at(0);
        EXPECT_NEAR(glow.radius, radius, 1e-6);
        EXPECT_NEAR(glow.color.alpha, opacity, 1e-6);
        EXPECT_NEAR(glow.color.green, kSky.green, 1e-6) << "in the new colour all the way";
        shown.advance(2s);
    }
}

TEST(Gauge, ARingWithoutAnArcHasNoGlowAndNeedsNoFrames) {
    double progress = 0;
    ShownElement shown(kRingSize, [&] { return WidgetRingView{.progress = progress}.body(); });
    shown.appear();
    shown.advance(2s);
    EXPECT_TRUE(shown.all<DrawShadow>().empty());
    EXPECT_EQ(shown.view.frameRate(), 0);
    shown.change([&] { progress = 0.25; });
    shown.advance(2s);
    EXPECT_EQ(shown.all<DrawShadow>().size(), 1U);
    EXPECT_DOUBLE_EQ(arcEnd(shown), 0.25);
}

TEST(Gauge, ARingPassesOnWhatIsOutOfRangeAndSurvivesWhatIsNoNumber) {
    for (const auto& [odd, end] : {std::pair{1.3, 1.3}, {-0.2, 0}, {kNaN, 0}, {kInfinite, 1}}) {
        double progress = odd;
        ShownElement shown(kRingSize, [&] { return WidgetRingView{.progress = progress}.body(); });
        shown.appear();
        shown.advance(1s);
        EXPECT_DOUBLE_EQ(std::max(arcEnd(shown), 0.0), end) << odd;
        shown.change([&] { progress = 0.5; });
        shown.advance(1s);
        EXPECT_DOUBLE_EQ(arcEnd(shown), 0.5) << "after " << odd;
    }
}

TEST(Gauge, AVelocityBarThatStandsStillNeedsNoFramesAndAnEmptyBarNeither) {
    double speed = 10;
    ShownElement shown(kBarSize, [&] { return VelocityBar{speed, kRed}.body(); });
    shown.appear();
    EXPECT_EQ(shown.view.frameRate(), 60);
    shown.advance(600ms);
    EXPECT_EQ(shown.view.frameRate(), 0);
    const DisplayList still = shown.picture();
    shown.change([] {});
    EXPECT_EQ(shown.picture(), still);
    EXPECT_EQ(shown.view.frameRate(), 0);
    shown.change([&] { speed = 20; });
    EXPECT_EQ(shown.view.frameRate(), 60);

    ShownElement empty(kBarSize, [] { return ArdoNeonBar{0, 100, kRed}.body(); });
    empty.appear();
    empty.advance(1s);
    EXPECT_TRUE(empty.all<DrawShadow>().empty());
    EXPECT_EQ(empty.view.frameRate(), 0);
}

TEST(Gauge, TellsItsShareInWholePercentUnlessItSaysItsValue) {
    const auto told = [](const auto& gauge) {
        ShownElement shown(kRingSize, [&] { return gauge.body(); });
        shown.appear();
        const AccessibleNode tree = shown.view.accessibleTree();
        EXPECT_EQ(tree.children.size(), 1U);
        EXPECT_EQ(tree.children.at(0).role, AccessibleRole::meter);
        EXPECT_TRUE(tree.children[0].children.empty());
        return tree.children[0].value;
    };
    EXPECT_EQ(told(ArdoNeonBar{41.8, 100}), "42 %");
    EXPECT_EQ(told(ArdoNeonBar{1, 0}), "0 %");
    EXPECT_EQ(told(VelocityBar{10}), "50 %");
    EXPECT_EQ(told(WidgetRingView{.title = "RAM", .valueText = "7 GB", .progress = 0.2}), "7 GB");
    EXPECT_EQ(told(WidgetRingView{.title = "RAM", .progress = 0.2}), "20 %");
}

}  // namespace
}  // namespace norvane
