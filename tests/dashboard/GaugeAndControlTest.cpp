#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "dashboard/ArdoNeonBar.h"
#include "dashboard/ArdoSegmentedPicker.h"
#include "dashboard/ArdoSwitchStyle.h"
#include "dashboard/VelocityBar.h"
#include "dashboard/WidgetRingView.h"
#include "ShownElement.h"
#include "views/Stack.h"
#include "views/Stepper.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Key = KeyEvent::Key;

// A switch, a picker and two steppers below one another, on a screen whose state they change.
class ControlTest : public testing::Test {
 protected:
    ControlTest() { shown_.appear(); }

    Element body() {
        const auto set = [this](auto& value) {
            return [this, &value](auto next) { shown_.view.change([&] { value = next; }); };
        };
        const auto number = [&](const char* name, double& value) {
            return stepper({.name = name, .stepping = {10, 200, 5}}, value, set(value));
        };
        return vstack({}, ArdoSwitchStyle{Ink::green}.body("Alerts", isOn_, set(isOn_), isEnabled_),
                      ArdoSegmentedPicker<int>{.name = "Choice",
                                               .selection = chosen_,
                                               .options = {{"One", 1}, {"Two", 2}, {"Three", 3}},
                                               .select = set(chosen_)}
                          .body(),
                      number("First", first_), number("Second", second_));
    }
    // The middle of what is filled with that size.
    std::optional<double> middleOf(Size size) {
        for (const FillShape& fill : shown_.all<FillShape>()) {
            const auto* found = std::get_if<RoundedRect>(&fill.shape);
            if (found != nullptr && found->rect.size == size) return found->rect.midX();
        }
        return std::nullopt;
    }
    double thumb() { return middleOf({14, 14}).value_or(0) - (312 - 17); }
    std::optional<double> pill() { return middleOf({60, 22}); }

    bool isOn_ = false;
    bool isEnabled_ = true;
    int chosen_ = 1;
    double first_ = 100;
    double second_ = 15;
    ShownElement shown_{{312, 100}, [this] { return body(); }};
};

TEST_F(ControlTest, WhatAUserChangesMovesBySpringAndAnythingElseIsThereAtOnce) {
    const double one = pill().value_or(0);
    const double middle = shown_.node("Alerts", AccessibleRole::toggle).frame.midY();
    for (const double x : {5.0, 200.0, 300.0}) {
        const bool before = isOn_;
        shown_.click({x, middle});
        EXPECT_NE(isOn_, before) << x << " of its row";
        EXPECT_EQ(shown_.node("Alerts").isOn, isOn_) << x;
    }
    shown_.advance(1s);
    shown_.change([&] { isOn_ = false; });
    shown_.click({5, middle});
    shown_.click(shown_.node("Three", AccessibleRole::radioButton));
    EXPECT_EQ(chosen_, 3);
    EXPECT_DOUBLE_EQ(thumb(), -7);
    EXPECT_EQ(pill(), one);
    EXPECT_EQ(shown_.view.frameRate(), 60);
    double farthest = 0;
    for (int step = 0; step < 100; ++step) {
        shown_.advance(10ms);
        farthest = std::max(farthest, thumb());
    }
    EXPECT_NEAR(farthest, 7 + 14 * 0.046, 0.02) << "a spring of damping 0.7 swings over";
    EXPECT_DOUBLE_EQ(thumb(), 7);
    EXPECT_EQ(pill(), one + 120);
    EXPECT_EQ(shown_.view.frameRate(), 0);
    for (const AccessibleNode& segment : shown_.node("Choice", AccessibleRole::group).children)
        EXPECT_EQ(segment.isOn, segment.name == "Three") << segment.name;

    shown_.change([&] {
        isOn_ = isEnabled_ = false;
        chosen_ = 2;
    });
    EXPECT_DOUBLE_EQ(thumb(), -7);
    EXPECT_EQ(pill(), one + 60);
    shown_.click({300, middle});
    EXPECT_FALSE(isOn_) << "it cannot be flipped now";
    shown_.change([&] { chosen_ = 4; });
    EXPECT_EQ(pill(), std::nullopt) << "none of them";
}

TEST_F(ControlTest, AStepperIsOneThingToTheKeyboard) {
    EXPECT_FALSE(shown_.key(Key::up)) << "nobody has the keyboard";
    while (!shown_.node("First", AccessibleRole::spinButton).isFocused)
        ASSERT_TRUE(shown_.key(Key::tab));
    shown_.key(Key::up);
    shown_.key(Key::up);
    shown_.key(Key::down);
    EXPECT_EQ(first_, 105);
    EXPECT_EQ(second_, 15) << "the other one's keys";
    shown_.key(Key::tab);
    EXPECT_TRUE(shown_.node("Second").isFocused) << "one stop for each";
    EXPECT_TRUE(shown_.key(Key::down));
    EXPECT_TRUE(shown_.key(Key::down)) << "at its end it keeps the key";
    EXPECT_EQ(second_, 10);
}

TEST(Stepping, ComesToThePlacesOfItsRange) {
    struct Case {
        Stepping stepping;
        double from;
        std::optional<double> up, down;
    };
    const Stepping storage{10, 200, 5};
    constexpr std::nullopt_t no = std::nullopt;
    for (const Case& c :
         {Case{storage, 100, 105, 95}, Case{storage, 10, 15, no}, Case{storage, 200, no, 195},
          Case{storage, 12.7, 15, 10}, Case{storage, -40, 10, no}, Case{storage, 1000, no, 200},
          Case{storage, -kInfinite, 10, no}, Case{storage, kNaN, no, no},
          Case{{0, 1, 0.1}, 0.1 + 0.2, 0.4, 0.2}, Case{{0, 12, 5}, 40, no, 10}, Case{{0, 10, 0}, 5, no, no},
          Case{{10, 0, 1}, 5, no, no}, Case{{0, kNaN, 1}, 5, no, no}}) {
        // A value of a range that takes none is far from all of these.
        EXPECT_NEAR(c.stepping.up(c.from).value_or(-1), c.up.value_or(-1), 1e-9) << c.from;
        EXPECT_NEAR(c.stepping.down(c.from).value_or(-1), c.down.value_or(-1), 1e-9) << c.from;
    }
}

// A bar of a hundred that has been put on the screen, with what it shows.
class GaugeTest : public testing::Test {
 protected:
    // The part of the bar that the last shape in it fills: with nothing in it the track is the only one.
    double filled() {
        const auto fills = shown_.all<FillShape>();
        return fills.size() < 2 ? 0 : std::get<RoundedRect>(fills.back().shape).rect.size.width / 200;
    }
    void show(double value) {
        value_ = value;
        shown_.appear();
    }

    double value_ = 0;
    Color color_{1, 0, 0, 1};
    ShownElement shown_{{200, 10}, [this] { return ArdoNeonBar{value_, 100, color_}.body(); }};
};

TEST_F(GaugeTest, GrowsFromADotWithinItsRoundEndAndGlidesToEachNewValue) {
    show(80);
    EXPECT_EQ(filled(), 0);
    shown_.advance(10ms);
    const Size dot = std::get<RoundedRect>(shown_.all<FillShape>().back().shape).rect.size;
    EXPECT_LT(dot.width, 10);
    EXPECT_EQ(dot.height, dot.width);
    shown_.advance(530ms);
    EXPECT_LT(filled(), 0.8) << "it takes 0.55 s";
    shown_.advance(10ms);
    EXPECT_DOUBLE_EQ(filled(), 0.8);
    shown_.change([&] { value_ = 20; });
    EXPECT_DOUBLE_EQ(filled(), 0.8);
    shown_.advance(200ms);
    EXPECT_GT(filled(), 0.2);
    EXPECT_LT(filled(), 0.6) << "fast at first";
    shown_.advance(350ms);
    EXPECT_DOUBLE_EQ(filled(), 0.2);
}

TEST_F(GaugeTest, AValueThatChangesBeforeTheOpeningGetsItsTurnIsTheOneThatItOpensTo) {
    value_ = 80;
    shown_.view.appear();
    shown_.picture();  // it has appeared, and the main queue has not come to it
    shown_.change([&] { value_ = 30; });
    for (int step = 0; step < 10; ++step) {
        EXPECT_LE(filled(), 0.3);
        shown_.advance(100ms);
    }
    EXPECT_DOUBLE_EQ(filled(), 0.3);
}

TEST_F(GaugeTest, IsWhereItWasWhenItIsShownAgainAndSetsOutFromThere) {
    show(60);
    shown_.advance(1s);
    for (const double next : {60.0, 10.0}) {
        shown_.view.disappear();
        shown_.view.change([&] { value_ = next; });
        shown_.machine.advance(1h);
        shown_.view.appear();
        EXPECT_DOUBLE_EQ(filled(), 0.6) << "in the first picture";
        shown_.settle();
        shown_.advance(550ms);
        EXPECT_DOUBLE_EQ(filled(), next / 100);
    }
}

TEST_F(GaugeTest, BreathesOnInTheNewColorAndAnEmptyOneDoesNot) {
    show(0);
    shown_.advance(1s);
    EXPECT_EQ(shown_.view.frameRate(), 0);
    shown_.change([&] {
        value_ = 90;
        color_ = {0.25, 0.5, 1, 1};
    });
    shown_.advance(1s);
    for (const auto& [radius, opacity] : {std::pair{6.0, 0.8}, {2, 0.2}}) {
        const DrawShadow glow = shown_.all<DrawShadow>().at(0);
        EXPECT_NEAR(glow.radius, radius, 1e-6);
        EXPECT_NEAR(glow.color.alpha, opacity, 1e-6);
        EXPECT_NEAR(glow.color.green, 0.5, 1e-6) << "all the way";
        shown_.advance(2s);
    }
}

TEST(Gauge, ARingPassesOnWhatIsOutOfRangeAndSurvivesWhatIsNoNumber) {
    for (const auto& [odd, end] : {std::pair{1.3, 1.3}, {-0.2, 0}, {0.0, 0}, {kNaN, 0}, {kInfinite, 1}}) {
        double progress = odd;
        ShownElement shown({100, 120}, [&] { return WidgetRingView{.progress = progress}.body(); });
        shown.appear();
        for (const double want : {end, 0.5}) {
            shown.advance(1s);
            const auto lines = shown.all<StrokeShape>();  // the arc after its track, where there is one
            EXPECT_DOUBLE_EQ(lines.size() < 2 ? 0 : std::max(0.0, std::get<Arc>(lines.back().shape).to),
                             want);
            EXPECT_EQ(shown.view.frameRate() > 0, want > 0) << odd << ": no arc, no glow";
            shown.change([&] { progress = 0.5; });
        }
    }
}

TEST(Gauge, TellsItsShareInWholePercentUnlessItSaysItsValueAndAVelocityBarDoesNotBreathe) {
    ShownElement shown({200, 300}, [] {
        return vstack({}, VelocityBar{10}.body(), WidgetRingView{.valueText = "7 GB"}.body());
    });
    shown.appear();
    EXPECT_EQ(shown.nodes().at(0).value, "50 %");
    EXPECT_EQ(shown.nodes().at(1).value, "7 GB");
    EXPECT_EQ(shown.view.frameRate(), 60);
    shown.advance(600ms);
    EXPECT_EQ(shown.view.frameRate(), 0);
}

}  // namespace
}  // namespace norvane
