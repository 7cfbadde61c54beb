#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "dashboard/ArdoSegmentedPicker.h"
#include "dashboard/ArdoSwitchStyle.h"
#include "dashboard/VoltGreen.h"
#include "OddNumbers.h"
#include "ShownElement.h"
#include "views/Link.h"
#include "views/Spinner.h"
#include "views/Stack.h"
#include "views/Stepper.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Key = KeyEvent::Key;

constexpr Size kRow{312, 24};

// A switch in a screen whose state it changes, as a panel's author writes it.
class SwitchedRow {
 public:
    bool isOn = false;
    bool isEnabled = true;
    ShownElement shown{kRow, [this] {
                           return ArdoSwitchStyle{VoltGreen::settings}.body(
                               "Alerts", isOn, [this](bool on) { shown.view.change([&] { isOn = on; }); },
                               isEnabled);
                       }};

    // Of the thumb, from the middle of the switch.
    double thumb() {
        const RoundedRect circle = std::get<RoundedRect>(shown.all<FillShape>().back().shape);
        return circle.rect.midX() - (kRow.width - 17);
    }
};

TEST(Control, ASwitchIsFlippedAnywhereOnItsRow) {
    SwitchedRow row;
    row.shown.appear();
    EXPECT_EQ(row.shown.node("Alerts").role, AccessibleRole::toggle);
    EXPECT_EQ(row.shown.node("Alerts").isOn, false);
    row.shown.click({5, 12});
    EXPECT_TRUE(row.isOn) << "on the label";
    EXPECT_EQ(row.shown.node("Alerts").isOn, true);
    row.shown.click({200, 12});
    EXPECT_FALSE(row.isOn) << "between";
    row.shown.click({300, 12});
    EXPECT_TRUE(row.isOn) << "on the switch";
    EXPECT_FALSE(row.shown.key(Key::space)) << "it has not the keyboard yet";
    row.shown.key(Key::tab);
    EXPECT_TRUE(row.shown.node("Alerts").isFocused);
    row.shown.key(Key::space);
    EXPECT_FALSE(row.isOn);
    row.shown.key(Key::returnKey);
    EXPECT_TRUE(row.isOn);
    EXPECT_TRUE(row.shown.perform("Alerts", "press"));
    EXPECT_FALSE(row.isOn);

    row.shown.change([&] { row.isEnabled = false; });
    row.shown.click({300, 12});
    EXPECT_FALSE(row.shown.perform("Alerts", "press"));
    EXPECT_FALSE(row.isOn);
    EXPECT_FALSE(row.shown.node("Alerts").isEnabled);
}

TEST(Control, WhatASwitchChangesMovesBySpringAndAnythingElseIsThereAtOnce) {
    SwitchedRow row;
    row.shown.appear();
    EXPECT_DOUBLE_EQ(row.thumb(), -7);
    row.shown.click({300, 12});
    EXPECT_DOUBLE_EQ(row.thumb(), -7);
    EXPECT_EQ(row.shown.view.frameRate(), 60);
    double most = 0;
    for (int step = 0; step < 100; ++step) {
        row.shown.advance(10ms);
        most = std::max(most, row.thumb());
    }
    EXPECT_NEAR(most, 7 + 14 * 0.046, 0.02) << "a spring of damping 0.7 swings over";
    EXPECT_DOUBLE_EQ(row.thumb(), 7);
    EXPECT_EQ(row.shown.view.frameRate(), 0);

    row.shown.change([&] { row.isOn = false; });
    EXPECT_DOUBLE_EQ(row.thumb(), -7) << "from outside";
}

// A picker of three texts.
class PickedRow {
 public:
    std::string chosen = "one";
    int told = 0;
    ShownElement shown{{184, 26}, [this] {
                           return ArdoSegmentedPicker<std::string>{
                               .name = "Choice",
                               .selection = chosen,
                               .options = {{"One", "one"}, {"Two", "two"}, {"Three", "three"}},
                               .activeTint = VoltGreen::settings,
                               .itemWidth = 60,
                               .select =
                                   [this](const std::string& value) {
                                       ++told;
                                       shown.view.change([&] { chosen = value; });
                                   }}
                               .body();
                       }};

    // The pill's left edge; none where there is no pill.
    std::optional<double> pill() {
        for (const FillShape& fill : shown.all<FillShape>()) {
            if (fill.fill.from == VoltGreen::settings) return std::get<RoundedRect>(fill.shape).rect.minX();
        }
        return std::nullopt;
    }
};

TEST(Control, APickersPillGlidesToTheSegmentThatIsPressed) {
    PickedRow row;
    row.shown.appear();
    EXPECT_EQ(row.pill(), 2);
    row.shown.click({150, 13});
    EXPECT_EQ(row.chosen, "three");
    EXPECT_EQ(row.pill(), 2);
    row.shown.advance(60ms);
    EXPECT_GT(*row.pill(), 10);
    EXPECT_LT(*row.pill(), 110);
    row.shown.advance(1s);
    EXPECT_EQ(row.pill(), 122);

    row.shown.change([&] { row.chosen = "two"; });
    EXPECT_EQ(row.pill(), 62) << "from outside it is there at once";
    row.shown.change([&] { row.chosen = "another"; });
    EXPECT_EQ(row.pill(), std::nullopt);
}

TEST(Control, APickersSegmentsAreReachedByKeyboardAndByName) {
    PickedRow row;
    row.shown.appear();
    const AccessibleNode group = row.shown.node("Choice");
    EXPECT_EQ(group.role, AccessibleRole::group);
    ASSERT_EQ(group.children.size(), 3U);
    for (const AccessibleNode& segment : group.children) {
        EXPECT_EQ(segment.role, AccessibleRole::radioButton);
        EXPECT_EQ(segment.isOn, segment.name == "One");
    }
    row.shown.key(Key::tab);
    row.shown.key(Key::tab);
    EXPECT_TRUE(row.shown.node("Two").isFocused);
    row.shown.key(Key::space);
    EXPECT_EQ(row.chosen, "two");
    EXPECT_TRUE(row.shown.perform("Three", "press"));
    EXPECT_EQ(row.chosen, "three");
    EXPECT_EQ(row.shown.node("Three").isOn, true);
    EXPECT_EQ(row.told, 2);
    row.shown.perform("Three", "press");
    EXPECT_EQ(row.told, 2) << "it is chosen already";
}

TEST(Control, AStepperComesToThePlacesOfItsRange) {
    struct Case {
        const char* name;
        Stepping stepping;
        double from;
        std::optional<double> up, down;
    };
    const Stepping storage{10, 200, 5};
    const Stepping tenths{0, 1, 0.1};
    for (const Case& c : {
             Case{"in the middle", storage, 100, 105, 95},
             Case{"at its least", storage, 10, 15, std::nullopt},
             Case{"at its most", storage, 200, std::nullopt, 195},
             Case{"beside a place", storage, 12.7, 15, 10},
             Case{"below the range", storage, -40, 10, std::nullopt},
             Case{"above the range", storage, 1000, std::nullopt, 200},
             Case{"far below", storage, -kInfinite, 10, std::nullopt},
             Case{"no number", storage, kNaN, std::nullopt, std::nullopt},
             Case{"a sum of tenths", tenths, 0.1 + 0.2, 0.4, 0.2},
             Case{"above an end that is no place", {0, 12, 5}, 40, std::nullopt, 10},
             Case{"no step", {0, 10, 0}, 5, std::nullopt, std::nullopt},
             Case{"no range", {10, 0, 1}, 5, std::nullopt, std::nullopt},
             Case{"no numbers", {0, kNaN, 1}, 5, std::nullopt, std::nullopt},
         }) {
        const auto up = c.stepping.up(c.from);
        const auto down = c.stepping.down(c.from);
        ASSERT_EQ(up.has_value(), c.up.has_value()) << c.name;
        ASSERT_EQ(down.has_value(), c.down.has_value()) << c.name;
        EXPECT_NEAR(up.value_or(0), c.up.value_or(0), 1e-9) << c.name;
        EXPECT_NEAR(down.value_or(0), c.down.value_or(0), 1e-9) << c.name;
    }
}

TEST(Control, AStepperIsOneThingToTheKeyboard) {
    double first = 100;
    double second = 15;
    ShownElement* screen = nullptr;
    const auto make = [&screen](const char* name, double& value) {
        return stepper({.name = name, .valueText = "its value", .stepping = {10, 200, 5}}, value,
                       [&](double next) { screen->view.change([&] { value = next; }); });
    };
    ShownElement both({51, 40}, [&] { return vstack({}, make("First", first), make("Second", second)); });
    screen = &both;
    both.appear();
    EXPECT_FALSE(both.key(Key::up)) << "nobody has the keyboard";
    both.key(Key::tab);
    EXPECT_TRUE(both.node("First").isFocused);
    both.key(Key::up);
    both.key(Key::up);
    both.key(Key::down);
    EXPECT_EQ(first, 105);
    EXPECT_EQ(second, 15) << "the other one's keys";
    both.key(Key::tab);
    EXPECT_TRUE(both.node("Second").isFocused) << "one stop for each";
    EXPECT_TRUE(both.key(Key::down));
    EXPECT_TRUE(both.key(Key::down)) << "at its end it keeps the key";
    EXPECT_EQ(second, 10);
    EXPECT_EQ(both.node("Second").role, AccessibleRole::spinButton);
    EXPECT_EQ(both.node("Second").value, "its value");
}

TEST(Control, ALinkIsUnderlinedUnderThePointerAndLeadsSomewhere) {
    int followed = 0;
    ShownElement shown({80, 20},
                       [&] { return norvane::link("Licence", {.font = {.size = 12}}, [&] { ++followed; }); });
    shown.appear();
    EXPECT_TRUE(shown.all<FillShape>().empty());
    shown.view.pointer({PointerEvent::Kind::move, {10, 8}});
    shown.settle();
    EXPECT_EQ(shown.all<FillShape>().size(), 1U);
    shown.click({10, 8});
    EXPECT_EQ(followed, 1);
    shown.view.pointer({PointerEvent::Kind::leave, {}});
    shown.settle();
    EXPECT_TRUE(shown.all<FillShape>().empty());
    EXPECT_EQ(shown.node("Licence").role, AccessibleRole::link);
}

TEST(Control, ASpinnerGoesRoundForAsLongAsItIsShown) {
    bool isBusy = true;
    ShownElement shown({20, 20}, [&] { return when(isBusy, [] { return spinner("Reading"); }); });
    shown.appear();
    EXPECT_EQ(shown.view.frameRate(), 30);
    EXPECT_EQ(shown.node("Reading").role, AccessibleRole::progress);
    const DisplayList before = shown.picture();
    shown.advance(450ms);
    EXPECT_NE(shown.picture(), before);
    shown.advance(450ms);
    EXPECT_EQ(shown.picture(), before) << "once round";
    shown.change([&] { isBusy = false; });
    EXPECT_EQ(shown.view.frameRate(), 0);
}

}  // namespace
}  // namespace norvane
