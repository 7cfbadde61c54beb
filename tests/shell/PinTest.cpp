#include <gtest/gtest.h>

#include <string>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// Sequences of what a user does with the popovers, written as words.
class PinTest : public ShellTest {};

constexpr PinState kFree{false, false};
constexpr PinState kPinned{true, false};
constexpr PinState kSuspended{true, true};
constexpr PinState kUnpinnedBelow{false, true};

TEST_F(PinTest, WhateverTheUserDoesThePopoversFollowTheTable) {
    struct Case {
        const char* words;
        const char* shown;
        bool isUIVisible;
        PinState pin;
        int activations;  // without a pin only
    };
    for (const Case& c : {
             Case{"click", "main", true, kFree, 1},
             {"click click", "", false, kFree, 1},
             {"click outside", "", false, kFree, 1},
             {"click focus", "", false, kFree, 1},
             {"click esc click", "main", true, kFree, 2},

             {"click Settings", "settings", false, kFree, 2},
             {"click Settings outside", "", false, kFree, 2},
             {"click Settings focus", "settings", false, kFree, 2},
             {"click Settings esc", "", false, kFree, 2},
             {"click Settings click", "main", true, kFree, 3},
             {"click Info", "info", false, kFree, 2},
             {"click Info esc click", "main", true, kFree, 3},

             {"click Pin click", "main", true, kPinned, 1},
             {"click Pin outside", "main", true, kPinned, 1},
             {"click Pin focus", "main", true, kPinned, 1},
             {"click Pin esc", "main", true, kPinned, 1},
             {"click Pin Pin click", "", false, kFree, 1},

             {"click Pin Settings", "main settings", true, kSuspended, 1},
             {"click Pin Settings outside", "main", true, kPinned, 1},
             {"click Pin Info", "main info", true, kSuspended, 1},
             {"click Pin Info esc close-main", "main", true, kPinned, 1},
             // Closed by the suspension, it still counts as seen: the pin is set.
             {"click Pin Settings close-main", "settings", true, kSuspended, 1},
             {"click Pin Settings close-main esc", "", true, kPinned, 1},
             {"click Pin Settings close-main click", "main", true, kPinned, 2},
             // Two on top: the first that closes ends the suspension.
             {"click Pin Settings Info", "main settings info", true, kSuspended, 1},
             {"click Pin Settings Info esc", "main settings", true, kPinned, 1},

             {"click Pin Settings Pin", "main settings", true, kUnpinnedBelow, 1},
             {"click Pin Settings Pin close-main", "settings", false, kUnpinnedBelow, 1},
             {"click Pin Settings Pin esc", "main", true, kFree, 1},
             {"click Pin Settings Pin outside", "", false, kFree, 1},
             // Pinned again below, it may close for as long as the settings are up.
             {"click Pin Settings Pin Pin close-main", "settings", true, kSuspended, 1},
         }) {
        SCOPED_TRACE(c.words);
        restart();
        machine_.application.activations = 0;
        actAll(c.words);
        EXPECT_EQ(shown(), c.shown);
        EXPECT_EQ(isUIVisible(), c.isUIVisible);
        EXPECT_EQ(controller().pin(), c.pin);
        EXPECT_EQ(machine_.application.activations, c.activations);
        for (const ScriptedPopoverWindow* shownWindow : machine_.windowServer.windows()) {
            EXPECT_EQ(shownWindow->frame().maxX(), 1600 - 8);
            EXPECT_EQ(shownWindow->placesShown().size(), 1U) << "it jumped";
        }
    }
}

// The icon goes and comes again where the mode is applied by force.
TEST_F(PinTest, APopoverThatWasOnceOpenedUnderAPinReappliesTheModeEachTimeItCloses) {
    store(defaultskey::kMenuBarIconMode, "on");
    struct Case {
        const char* words;  // before it closes
        const char* iconSoonAfter;
    };
    for (const Case& c : {Case{"click Settings", "MenuIconNormal 1.00"},
                          {"click Pin Settings", "MenuIconNormal 0.50"},
                          {"click Pin Info", "MenuIconNormal 0.50"},
                          {"click Pin Settings esc Pin Info", "MenuIconNormal 1.00"},
                          {"click Pin Settings esc Pin Settings", "MenuIconNormal 0.50"}}) {
        restart();
        actAll(c.words);
        watchIcon(1s);
        act("esc");
        watchIcon(75ms);
        EXPECT_EQ(icon(), c.iconSoonAfter) << c.words;
    }

    choose(MenuBarIconMode::stats);
    actAll("click Pin Settings esc");
    EXPECT_EQ(length(), 54);
    EXPECT_EQ(label(), "0% 4.0G") << "it has been built again";
}

TEST_F(PinTest, TheApplicationEndsWithWhateverIsWaiting) {
    for (const char* words : {"", "click", "click Settings", "click Pin Info Settings",
                              "click Pin Settings close-main", "click Pin Settings Pin"}) {
        for (const auto wait : {0ms, 100ms, 600ms}) {
            restart();
            actAll(words);
            const bool isOn = app_->preferences().menuBarIconMode() == MenuBarIconMode::on;
            app_->preferences().setMenuBarIconMode(isOn ? MenuBarIconMode::stats : MenuBarIconMode::on);
            machine_.advance(wait);
            app_.reset();
            const auto asked = ticks();
            const int activations = machine_.application.activations;
            machine_.advance(5s);
            EXPECT_EQ(shown(), "") << words;
            EXPECT_EQ(ticks(), asked) << words;
            EXPECT_EQ(machine_.application.activations, activations) << words;
        }
    }
}

}  // namespace
}  // namespace norvane
