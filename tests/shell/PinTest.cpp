#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// Sequences of what a user does with the popovers, written as words.
class PinTest : public ShellTest {
 protected:
    void act(const std::string& word) {
        if (word == "click") {
            open();
        } else if (word == "pin") {
            press("main", "Pin");
        } else if (word == "settings") {
            press("main", "Settings");
        } else if (word == "info") {
            press("main", "Info");
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
    void actAll(const std::string& words) {
        std::istringstream all(words);
        for (std::string word; all >> word;)
            act(word);
    }
    // Starts from the beginning.
    void restart() {
        app_.reset();
        launch();
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

             {"click settings", "settings", false, kFree},
             {"click settings outside", "", false, kFree},
             {"click settings focus", "settings", false, kFree},
             {"click settings esc", "", false, kFree},
             {"click settings click", "main", true, kFree},
             {"click info", "info", false, kFree},
             {"click info outside", "", false, kFree},
             {"click info focus", "info", false, kFree},
             {"click info esc click", "main", true, kFree},

             {"click pin", "main", true, kPinned},
             {"click pin click", "main", true, kPinned},
             {"click pin outside", "main", true, kPinned},
             {"click pin focus", "main", true, kPinned},
             {"click pin esc", "main", true, kPinned},
             {"click pin close-main", "main", true, kPinned},
             {"click pin pin", "main", true, kFree},
             {"click pin pin click", "", false, kFree},
             {"click pin pin outside", "", false, kFree},

             {"click pin settings", "main settings", true, kSuspended},
             {"click pin settings focus", "main settings", true, kSuspended},
             {"click pin settings esc", "main", true, kPinned},
             {"click pin settings outside", "main", true, kPinned},
             {"click pin settings click", "main", true, kPinned},
             {"click pin settings esc outside", "main", true, kPinned},
             {"click pin info", "main info", true, kSuspended},
             {"click pin info esc close-main", "main", true, kPinned},
             // Closed by the suspension, it still counts as seen: the pin is set.
             {"click pin settings close-main", "settings", true, kSuspended},
             {"click pin settings close-main esc", "", true, kPinned},
             {"click pin settings close-main click", "main", true, kPinned},
             // Two on top: the first that closes ends the suspension.
             {"click pin settings info", "main settings info", true, kSuspended},
             {"click pin settings info esc", "main settings", true, kPinned},
             {"click pin settings info esc close-main", "main settings", true, kPinned},

             {"click pin settings pin", "main settings", true, kUnpinnedBelow},
             {"click pin settings pin close-main", "settings", false, kUnpinnedBelow},
             {"click pin settings pin esc", "main", true, kFree},
             {"click pin settings pin outside", "", false, kFree},
             // Pinned again below, it may close for as long as the settings are up.
             {"click pin settings pin pin close-main", "settings", true, kSuspended},
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
    for (const Case& c : {Case{"click", 1, "main"}, Case{"click settings", 2, "settings"},
                          Case{"click info", 2, "info"}, Case{"click pin settings", 1, "settings"},
                          Case{"click pin info", 1, "info"}, Case{"click pin click", 1, "main"}}) {
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
    EXPECT_EQ(ticksOf("pin"), 0U);
    EXPECT_EQ(ticksOf("settings close-main"), 0U) << "neither an opening nor a closing of the dashboard's";
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
    for (const Case& c : {Case{"never under a pin", "click settings esc", "MenuIconNormal 1.00"},
                          {"under a pin", "click pin settings esc", "MenuIconNormal 0.50"},
                          {"the other one, never", "click pin settings esc pin", "MenuIconNormal 1.00"},
                          {"info under a pin", "click pin info esc", "MenuIconNormal 0.50"}}) {
        restart();
        watchIcon(1s);
        actAll(c.words);
        watchIcon(75ms);
        const bool isDone = std::string(c.words).ends_with("pin");
        if (isDone) watchIcon(1s);
        EXPECT_EQ(icon(), c.iconSoonAfter) << c.name;
    }
    restart();
    actAll("click pin settings esc pin settings");
    EXPECT_EQ(shown(), "settings") << "without a pin by now";
    watchIcon(1s);
    act("esc");
    watchIcon(75ms);
    EXPECT_EQ(icon(), "MenuIconNormal 0.50") << "it tells us ever after";

    app_->preferences().setMenuBarIconMode(MenuBarIconMode::stats);
    machine_.advance(1s);
    actAll("click pin settings esc");
    EXPECT_EQ(machine_.windowServer.statusItemLength(), 54);
    machine_.windowServer.statusItemPicture();
    EXPECT_EQ(machine_.windowServer.statusItemContent()->accessibleTree().children.size(), 2U)
        << "the label has been built again";
}

// Each event is tried with the panel gone: nothing opens, and the pin is as it was.
TEST_F(PinTest, WithoutAButtonNothingOpensAndNothingIsForgotten) {
    launch();
    actAll("click pin");
    machine_.windowServer.hasPanel = false;
    act("settings");
    act("info");
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
    act("pin");
    act("esc");
    EXPECT_EQ(shown(), "");
    machine_.windowServer.hasPanel = true;
    EXPECT_EQ(icon(), "MenuIconNormal 1.00") << "the panel is back";
    act("click");
    EXPECT_EQ(shown(), "main");
}

TEST_F(PinTest, TheApplicationEndsWithWhateverIsWaiting) {
    for (const char* words : {"click", "click settings", "click pin settings", "click pin info settings",
                              "click pin settings close-main", "click pin settings pin"}) {
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
