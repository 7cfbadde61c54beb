#include <gtest/gtest.h>

#include <string>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// Sequences of what a user does with the popovers, written as words.
class PinTest : public ShellTest {
 protected:
    void act(const std::string& word) override {
        if (word == "click") {
            open();
        } else if (word == "Pin" || word == "Settings" || word == "Info") {
            press("main", word);
        } else if (word == "outside") {
            clickOutside();
        } else if (word == "focus") {
            focusElsewhere();
        } else if (word == "esc") {
            pressEscape();
        } else if (word == "close-main") {
            window("main").observer().windowEscapePressed();
            machine_.settle();
        } else {
            ADD_FAILURE() << word;
        }
        icon();  // the panel paints what has changed
    }
};

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
    };
    for (const Case& c : {
             Case{"click", "main", true, kFree},
             {"click click", "", false, kFree},
             {"click outside", "", false, kFree},
             {"click focus", "", false, kFree},
             {"click esc", "", false, kFree},
             {"click esc click", "main", true, kFree},

             {"click Settings", "settings", false, kFree},
             {"click Settings outside", "", false, kFree},
             {"click Settings focus", "settings", false, kFree},
             {"click Settings esc", "", false, kFree},
             {"click Settings click", "main", true, kFree},
             {"click Info", "info", false, kFree},
             {"click Info focus", "info", false, kFree},
             {"click Info esc click", "main", true, kFree},

             {"click Pin", "main", true, kPinned},
             {"click Pin click", "main", true, kPinned},
             {"click Pin outside", "main", true, kPinned},
             {"click Pin focus", "main", true, kPinned},
             {"click Pin esc", "main", true, kPinned},
             {"click Pin close-main", "main", true, kPinned},
             {"click Pin Pin", "main", true, kFree},
             {"click Pin Pin click", "", false, kFree},

             {"click Pin Settings", "main settings", true, kSuspended},
             {"click Pin Settings esc", "main", true, kPinned},
             {"click Pin Settings outside", "main", true, kPinned},
             {"click Pin Info", "main info", true, kSuspended},
             {"click Pin Info esc close-main", "main", true, kPinned},
             // Closed by the suspension, it still counts as seen: the pin is set.
             {"click Pin Settings close-main", "settings", true, kSuspended},
             {"click Pin Settings close-main esc", "", true, kPinned},
             {"click Pin Settings close-main click", "main", true, kPinned},
             // Two on top: the first that closes ends the suspension.
             {"click Pin Settings Info", "main settings info", true, kSuspended},
             {"click Pin Settings Info esc", "main settings", true, kPinned},

             {"click Pin Settings Pin", "main settings", true, kUnpinnedBelow},
             {"click Pin Settings Pin close-main", "settings", false, kUnpinnedBelow},
             {"click Pin Settings Pin esc", "main", true, kFree},
             {"click Pin Settings Pin outside", "", false, kFree},
             // Pinned again below, it may close for as long as the settings are up.
             {"click Pin Settings Pin Pin close-main", "settings", true, kSuspended},
         }) {
        restart();
        actAll(c.words);
        EXPECT_EQ(shown(), c.shown) << c.words;
        EXPECT_EQ(isUIVisible(), c.isUIVisible) << c.words;
        EXPECT_EQ(controller().pin(), c.pin) << c.words;
    }
}

TEST_F(PinTest, OnlyWhatOpensWithoutAPinActivatesTheApplicationAndAllTakeTheKeyboard) {
    struct Case {
        const char* words;
        int activations;
        const char* keyboard;
    };
    for (const Case& c : {Case{"click", 1, "main"}, Case{"click Settings", 2, "settings"},
                          Case{"click Info", 2, "info"}, Case{"click Pin Settings", 1, "settings"},
                          Case{"click Pin Info", 1, "info"}, Case{"click Pin click", 1, "main"}}) {
        restart();
        machine_.application.activations = 0;
        actAll(c.words);
        EXPECT_EQ(machine_.application.activations, c.activations) << c.words;
        EXPECT_EQ(keyboard(), c.keyboard) << c.words;
        for (const ScriptedPopoverWindow* shownWindow : machine_.windowServer.windows()) {
            EXPECT_EQ(shownWindow->frame().maxX(), 1600 - 8) << c.words;
            EXPECT_EQ(shownWindow->placesShown().size(), 1U) << c.words << ": it jumped";
        }
    }
}

TEST_F(PinTest, EachShowingOfTheMainPopoverTicksAtOnceWhateverWasVisible) {
    launch();
    const auto ticksOf = [&](const char* words) {
        const auto before = ticks();
        actAll(words);
        return ticks() - before;
    };
    EXPECT_EQ(ticksOf("click"), 1U);
    EXPECT_EQ(ticksOf("Pin"), 0U);
    EXPECT_EQ(ticksOf("Settings close-main"), 0U) << "neither an opening nor a closing of the dashboard's";
    EXPECT_EQ(ticksOf("click"), 1U) << "shown while it counts as visible";
}

// The icon goes and comes again where the mode is applied by force.
TEST_F(PinTest, APopoverThatWasOnceOpenedUnderAPinReappliesTheModeEachTimeItCloses) {
    store(defaultskey::kMenuBarIconMode, "on");
    struct Case {
        const char* name;
        const char* words;
        const char* iconSoonAfter;
    };
    for (const Case& c : {Case{"never under a pin", "click Settings esc", "MenuIconNormal 1.00"},
                          {"under a pin", "click Pin Settings esc", "MenuIconNormal 0.50"},
                          {"the other one, never", "click Pin Settings esc Pin", "MenuIconNormal 1.00"},
                          {"info under a pin", "click Pin Info esc", "MenuIconNormal 0.50"}}) {
        restart();
        watchIcon(1s);
        actAll(c.words);
        watchIcon(75ms);
        const bool isDone = std::string(c.words).ends_with("Pin");
        if (isDone) watchIcon(1s);
        EXPECT_EQ(icon(), c.iconSoonAfter) << c.name;
    }
    restart();
    actAll("click Pin Settings esc Pin Settings");
    EXPECT_EQ(shown(), "settings") << "without a pin by now";
    watchIcon(1s);
    act("esc");
    watchIcon(75ms);
    EXPECT_EQ(icon(), "MenuIconNormal 0.50") << "it tells us ever after";

    app_->preferences().setMenuBarIconMode(MenuBarIconMode::stats);
    machine_.advance(1s);
    actAll("click Pin Settings esc");
    EXPECT_EQ(machine_.windowServer.statusItemLength(), 54);
    machine_.windowServer.statusItemPicture();
    EXPECT_EQ(machine_.windowServer.statusItemContent()->accessibleTree().children.size(), 2U)
        << "the label has been built again";
}

// Each event is tried with the panel gone: nothing opens, and the pin is as it was.
TEST_F(PinTest, WithoutAButtonNothingOpensAndNothingIsForgotten) {
    launch();
    actAll("click Pin");
    machine_.windowServer.hasPanel = false;
    act("Settings");
    act("Info");
    controller().statusItemClicked();
    controller().showWelcomeIfNeeded();
    app_->showSettings();
    machine_.settle();
    EXPECT_EQ(shown(), "main");
    EXPECT_EQ(controller().pin(), kPinned) << "nothing was opened that could suspend it";
    app_->preferences().setMenuBarIconMode(MenuBarIconMode::on);
    machine_.settle();
    EXPECT_EQ(controller().currentMenuBarMode(), MenuBarIconMode::on);
    machine_.advance(2s);
    act("Pin");
    act("esc");
    EXPECT_EQ(shown(), "");
    machine_.windowServer.hasPanel = true;
    EXPECT_EQ(icon(), "MenuIconNormal 1.00") << "the panel is back";
    act("click");
    EXPECT_EQ(shown(), "main");
    machine_.windowServer.screen.reset();
    machine_.advance(5s);
}

TEST_F(PinTest, TheApplicationEndsWithWhateverIsWaiting) {
    for (const char* words : {"click", "click Settings", "click Pin Settings", "click Pin Info Settings",
                              "click Pin Settings close-main", "click Pin Settings Pin"}) {
        for (const bool isModeChanging : {false, true}) {
            for (const auto wait : {0ms, 100ms, 600ms}) {
                restart();
                actAll(words);
                if (isModeChanging) {
                    const bool isOn = app_->preferences().menuBarIconMode() == MenuBarIconMode::on;
                    app_->preferences().setMenuBarIconMode(isOn ? MenuBarIconMode::stats
                                                                : MenuBarIconMode::on);
                }
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
}

// The settings of the application's own, beside the status item's.
TEST_F(PinTest, TheApplicationShowsItsSettingsByThemselves) {
    launch();
    app_->showSettings();
    machine_.settle();
    EXPECT_EQ(shown(), "settings");
    EXPECT_EQ(keyboard(), "settings");
    EXPECT_EQ(window("settings").frame().maxX(), 1600 - 8);
    EXPECT_FALSE(isUIVisible());
    app_->showSettings();
    machine_.settle();
    EXPECT_EQ(shown(), "settings") << "once";
    EXPECT_TRUE(find(window("settings").content().accessibleTree(), "Smart Auto-Expand") != nullptr);
    app_->preferences().setMenuBarIconMode(MenuBarIconMode::on);
    machine_.advance(1s);
    EXPECT_EQ(shown(), "settings") << "it is none of the item's popovers";
    clickOutside();
    EXPECT_EQ(shown(), "");
}

}  // namespace
}  // namespace norvane
