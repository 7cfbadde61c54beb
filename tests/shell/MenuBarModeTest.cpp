#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// What stands in the panel, and what becomes of the popovers when that changes.
class MenuBarModeTest : public ShellTest {
 protected:
    void choose(MenuBarIconMode mode) {
        app_->preferences().setMenuBarIconMode(mode);
        machine_.settle();
    }
    // Comes up with the icon, its fading over.
    void launchWithIcon() {
        store(defaultskey::kMenuBarIconMode, "on");
        launch();
        watchIcon(1s);
    }
    double length() { return machine_.windowServer.statusItemLength(); }
    // A load lasts until the state has followed.
    void setLoad(double percent) {
        machine_.hostPort.processors.setLoad(percent);
        machine_.advance(15s);
    }
};

TEST_F(MenuBarModeTest, TheIconGoesAndComesByOpacity) {
    store(defaultskey::kMenuBarIconMode, "on");
    launch();
    EXPECT_EQ(length(), StatusItem::kSquareLength);
    EXPECT_EQ(controller().lastIconName(), "MenuIconNormal");
    const auto fades = [&](const char* name, const std::vector<const char*>& icons) {
        for (const char* want : icons) {
            EXPECT_EQ(icon(), want) << name;
            machine_.advance(75ms);
        }
    };
    fades("at the start there is nothing to go",
          {"", "", "", "MenuIconNormal 0.50", "MenuIconNormal 1.00", "MenuIconNormal 1.00"});
    open();
    press("main", "Pin");
    press("main", "Settings");
    machine_.advance(1s);
    pressEscape();
    fades("by force",
          {"MenuIconNormal 1.00", "MenuIconNormal 0.50", "", "MenuIconNormal 0.50", "MenuIconNormal 1.00"});
}

TEST_F(MenuBarModeTest, TheIconFollowsTheStateAtOnceAndOnlyWhereThereIsOne) {
    launchWithIcon();
    EXPECT_EQ(icon(), "MenuIconNormal 1.00");
    setLoad(100);
    ASSERT_EQ(controller().sampler().systemState().get(), ComponentState::critical);
    EXPECT_EQ(icon(), "MenuIconCritical 1.00");
    EXPECT_EQ(controller().lastIconName(), "MenuIconCritical");

    choose(MenuBarIconMode::stats);
    EXPECT_EQ(length(), 54);
    setLoad(0);
    ASSERT_EQ(controller().sampler().systemState().get(), ComponentState::normal);
    EXPECT_EQ(controller().lastIconName(), "MenuIconCritical") << "left alone beside the label";
    choose(MenuBarIconMode::on);
    EXPECT_EQ(controller().lastIconName(), "MenuIconNormal") << "by the state of now";
    EXPECT_EQ(length(), StatusItem::kSquareLength);
    watchIcon(300ms);
    EXPECT_EQ(icon(), "MenuIconNormal 1.00");
}

TEST_F(MenuBarModeTest, AStateThatChangesWhileTheIconFadesIsTheOneThatComes) {
    launch();
    machine_.advance(100ms);
    machine_.hostPort.processors.setLoad(100);
    while (controller().sampler().systemState().get() != ComponentState::critical)
        machine_.advance(1s);
    choose(MenuBarIconMode::on);
    machine_.hostPort.processors.setLoad(0);
    watchIcon(300ms);
    EXPECT_EQ(icon(), "MenuIconCritical 1.00");
    choose(MenuBarIconMode::stats);
    choose(MenuBarIconMode::on);
    machine_.advance(100ms);
    choose(MenuBarIconMode::stats);
    machine_.advance(1s);
    EXPECT_EQ(length(), 54);
    machine_.windowServer.statusItemPicture();
    EXPECT_EQ(machine_.windowServer.statusItemContent()->accessibleTree().children.size(), 2U)
        << "the label stays, whatever fade was under way";
}

TEST_F(MenuBarModeTest, AChangedModeTakesItsPopoverAwayAndBringsItBackToTheNewAnchor) {
    struct Case {
        const char* name;
        std::vector<const char*> pressed;  // after the dashboard has been opened
        const char* atOnce;
        const char* back;
        const char* keyboard;  // in the end
    };
    for (const Case& c : {Case{"the dashboard", {}, "", "main", "main"},
                          {"the settings", {"Settings"}, "", "settings", "settings"},
                          {"a pinned dashboard stays", {"Pin"}, "main", "main", "main"},
                          {"settings above a pin", {"Pin", "Settings"}, "main", "main settings", "settings"},
                          {"info above a pin", {"Pin", "Info"}, "", "main", "main"},
                          {"info alone stays", {"Info"}, "info", "info", "info"}}) {
        app_.reset();
        store(defaultskey::kMenuBarIconMode, "stats");
        launch();
        open();
        for (const char* name : c.pressed)
            press("main", name);
        const bool isInfoAbovePin = c.pressed.size() == 2 && std::string(c.pressed[1]) == "Info";
        choose(MenuBarIconMode::on);
        EXPECT_EQ(length(), StatusItem::kSquareLength) << c.name;
        if (isInfoAbovePin) {
            // The suspension lets the dashboard go; info is none of those that move.
            EXPECT_EQ(shown(), "info") << c.name;
            machine_.advance(600ms);
            EXPECT_EQ(shown(), "info main") << c.name;
            continue;
        }
        EXPECT_EQ(shown(), c.atOnce) << c.name;
        machine_.advance(599ms);
        EXPECT_EQ(shown(), c.atOnce) << c.name;
        machine_.advance(1ms);
        EXPECT_EQ(shown(), c.back) << c.name;
        machine_.advance(119ms);
        if (std::string(c.atOnce).empty()) {
            EXPECT_EQ(keyboard(), "") << c.name;
        }
        machine_.advance(1ms);
        EXPECT_EQ(keyboard(), c.keyboard) << c.name;
        for (const ScriptedPopoverWindow* back : machine_.windowServer.windows()) {
            EXPECT_EQ(back->frame().maxX(), 1600 - 8) << c.name;
            for (const Point& place : back->placesShown())
                EXPECT_EQ(place, back->frame().origin) << c.name << ": it jumped";
        }
    }
}

TEST_F(MenuBarModeTest, APinnedDashboardMovesToTheNewAnchorWithoutClosing) {
    machine_.windowServer.statusItemRightMargin = 600;
    launch();
    open();
    press("main", "Pin");
    const auto hangsBelowTheItem = [this] {
        return window("main").frame().midX() == machine_.windowServer.buttonFrame()->midX();
    };
    ASSERT_TRUE(hangsBelowTheItem());
    choose(MenuBarIconMode::on);
    EXPECT_FALSE(hangsBelowTheItem());
    machine_.advance(600ms);
    EXPECT_TRUE(hangsBelowTheItem());
    EXPECT_EQ(window("main").placesShown().size(), 2U) << "in one step";
    EXPECT_TRUE(isUIVisible());
}

TEST_F(MenuBarModeTest, TwoChangesInARowBringBothPopoversBack) {
    launch();
    open();
    press("main", "Settings");
    choose(MenuBarIconMode::on);
    EXPECT_EQ(shown(), "");
    machine_.advance(100ms);
    click();
    EXPECT_EQ(shown(), "main");
    choose(MenuBarIconMode::stats);
    EXPECT_EQ(shown(), "");
    machine_.advance(500ms);
    EXPECT_EQ(shown(), "settings");
    machine_.advance(100ms);
    EXPECT_EQ(shown(), "settings main");
}

TEST_F(MenuBarModeTest, WhatWouldComeBackStaysAwayWhereThereIsNoButton) {
    launch();
    open();
    choose(MenuBarIconMode::on);
    machine_.windowServer.hasPanel = false;
    machine_.advance(2s);
    EXPECT_EQ(shown(), "");
    EXPECT_FALSE(isUIVisible());
    machine_.windowServer.hasPanel = true;
    click();
    EXPECT_EQ(shown(), "main");
}

}  // namespace
}  // namespace norvane
