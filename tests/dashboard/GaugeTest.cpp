#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "dashboard/ArdoNeonBar.h"
#include "dashboard/VelocityBar.h"
#include "dashboard/WidgetRingView.h"
#include "ShownElement.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
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

TEST(Gauge, ABarShowsThePartAsFarAsThereIsAWhole) {
    struct Case {
        double value, total, ratio;
    };
    for (const Case& c :
         {Case{0, 100, 0}, Case{50, 100, 0.5}, Case{100, 100, 1}, Case{150, 100, 1}, Case{-5, 100, 0},
          Case{5, 0, 0}, Case{5, -10, 0}, Case{-5, -10, 0}, Case{kNaN, 100, 0}, Case{5, kNaN, 0},
          Case{kInfinite, 100, 1}, Case{-kInfinite, 100, 0}, Case{5, kInfinite, 0},
          Case{kInfinite, kInfinite, 0}, Case{1e300, 1e-300, 1}}) {
        EXPECT_EQ(ArdoNeonBar::ratio(c.value, c.total), c.ratio) << c.value << " of " << c.total;
    }
}

TEST(Gauge, AVelocityBarSpreadsTwoDecadesOverItsWidth) {
    struct Case {
        double speed, fill;
    };
    for (const Case& c : {Case{0, 0}, Case{-3, 0}, Case{0.5, 0}, Case{1, 0}, Case{std::sqrt(10.0), 0.25},
                          Case{10, 0.5}, Case{100, 1}, Case{1000, 1}, Case{kInfinite, 1}, Case{kNaN, 0}}) {
        EXPECT_NEAR(VelocityBar::fill(c.speed), c.fill, 1e-12) << c.speed;
    }
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

TEST(Gauge, BreathesInAndOutInFourSeconds) {
    ShownElement bar(kBarSize, [] { return ArdoNeonBar{50, 100, kRed}.body(); });
    ShownElement ring(kRingSize, [] { return WidgetRingView{.progress = 0.5, .activeColor = kRed}.body(); });
    bar.appear();
    ring.appear();
    EXPECT_TRUE(ring.all<DrawShadow>().empty()) << "there is no arc yet";
    struct Case {
        double barRadius, barOpacity, ringRadius, ringOpacity;
    };
    for (const Case& c : {Case{4, 0.5, 5, 0.55}, Case{6, 0.8, 7, 0.8}, Case{4, 0.5, 5, 0.55},
                          Case{2, 0.2, 3, 0.3}, Case{4, 0.5, 5, 0.55}}) {
        bar.advance(1s);
        ring.advance(1s);
        ASSERT_EQ(bar.all<DrawShadow>().size(), 1U);
        ASSERT_EQ(ring.all<DrawShadow>().size(), 1U);
        EXPECT_NEAR(bar.all<DrawShadow>()[0].radius, c.barRadius, 1e-6);
        EXPECT_NEAR(bar.all<DrawShadow>()[0].color.alpha, c.barOpacity, 1e-6);
        EXPECT_NEAR(ring.all<DrawShadow>()[0].radius, c.ringRadius, 1e-6);
        EXPECT_NEAR(ring.all<DrawShadow>()[0].color.alpha, c.ringOpacity, 1e-6);
        EXPECT_EQ(bar.view.frameRate(), 15);
        EXPECT_EQ(ring.view.frameRate(), 15);
    }
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
    struct Case {
        double radius, opacity;
    };
    for (const Case& c : {Case{6, 0.8}, Case{2, 0.2}}) {
        const DrawShadow glow = shown.all<DrawShadow>().at(0);
        EXPECT_NEAR(glow.radius, c.radius, 1e-6);
        EXPECT_NEAR(glow.color.alpha, c.opacity, 1e-6);
        EXPECT_NEAR(glow.color.red, kSky.red, 1e-6) << "in the new colour all the way";
        EXPECT_NEAR(glow.color.green, kSky.green, 1e-6);
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
    struct Case {
        double progress, end;
    };
    for (const Case& c :
         {Case{1.3, 1.3}, Case{-0.2, 0}, Case{kNaN, 0}, Case{kInfinite, 1}, Case{-kInfinite, 0}}) {
        double progress = c.progress;
        ShownElement shown(kRingSize, [&] { return WidgetRingView{.progress = progress}.body(); });
        shown.appear();
        shown.advance(1s);
        EXPECT_DOUBLE_EQ(std::max(arcEnd(shown), 0.0), c.end) << c.progress;
        shown.change([&] { progress = 0.5; });
        shown.advance(1s);
        EXPECT_DOUBLE_EQ(arcEnd(shown), 0.5) << "after " << c.progress;
    }
}

TEST(Gauge, SpringsSwingOverTheValueRingsFurtherThanBars) {
    ShownElement bar(kBarSize, [] { return ArdoNeonBar{50, 100, kRed, true}.body(); });
    ShownElement velocity(kBarSize, [] { return VelocityBar{10, kRed, true}.body(); });
    ShownElement ring(kRingSize, [] { return WidgetRingView{.progress = 0.5, .useSpring = true}.body(); });
    ShownElement eased(kRingSize, [] { return WidgetRingView{.progress = 0.5}.body(); });
    double mostBar = 0, mostVelocity = 0, mostRing = 0, mostEased = 0;
    for (ShownElement* shown : {&bar, &velocity, &ring, &eased})
        shown->appear();
    for (int step = 0; step < 150; ++step) {
        for (ShownElement* shown : {&bar, &velocity, &ring, &eased})
            shown->advance(10ms);
        mostBar = std::max(mostBar, filled(bar));
        mostVelocity = std::max(mostVelocity, filled(velocity));
        mostRing = std::max(mostRing, arcEnd(ring));
        mostEased = std::max(mostEased, arcEnd(eased));
    }
    // What a damped oscillator swings over by: exp(-pi * d / sqrt(1 - d * d)).
    EXPECT_NEAR(mostBar / 0.5 - 1, 0.0152, 5e-4);
    EXPECT_NEAR(mostVelocity / 0.5 - 1, 0.0152, 5e-4);
    EXPECT_NEAR(mostRing / 0.5 - 1, 0.0460, 5e-4);
    EXPECT_DOUBLE_EQ(mostEased, 0.5);
    EXPECT_NEAR(filled(bar), 0.5, 1e-3);
    EXPECT_NEAR(arcEnd(ring), 0.5, 1e-3);
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

TEST(Gauge, TellsItsShareInWholePercent) {
    struct Case {
        const char* name;
        Element (*make)();
        const char* value;
    };
    const Case cases[] = {
        {"bar",
         [] {
             return ArdoNeonBar{41.8, 100}.body();
         },
         "42 %"},
        {"bar of nothing",
         [] {
             return ArdoNeonBar{1, 0}.body();
         },
         "0 %"},
        {"velocity", [] { return VelocityBar{10}.body(); }, "50 %"},
        {"ring that says its value",
         [] { return WidgetRingView{.title = "RAM", .valueText = "7 GB", .progress = 0.2}.body(); }, "7 GB"},
        {"ring that does not", [] { return WidgetRingView{.title = "RAM", .progress = 0.2}.body(); }, "20 %"},
    };
    for (const Case& c : cases) {
        ShownElement shown(kRingSize, c.make);
        shown.appear();
        const AccessibleNode tree = shown.view.accessibleTree();
        ASSERT_EQ(tree.children.size(), 1U) << c.name;
        EXPECT_EQ(tree.children[0].role, AccessibleRole::meter) << c.name;
        EXPECT_EQ(tree.children[0].value, c.value) << c.name;
        EXPECT_TRUE(tree.children[0].children.empty()) << c.name;
    }
}

}  // namespace
}  // namespace norvane
