#include <gtest/gtest.h>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// What panels differ in, and what other starts of the application ask for.
class StatusItemTest : public ShellTest {
 protected:
    void startPanel() {
        machine_.windowServer.startPanel();
        machine_.advance(1s);
    }
    void reopen() {
        machine_.application.reopen();
        machine_.settle();
    }
};

TEST_F(StatusItemTest, APanelThatStartsLaterGetsWhatWasAskedForMeanwhile) {
    machine_.windowServer.hasPanel = false;
    launch(false);
    startPanel();
    EXPECT_EQ(shown(), "welcome");
    store(defaultskey::kHasSeenWelcome, true);
    act("esc");
    machine_.windowServer.hasPanel = false;
    reopen();
    controller().statusItemClicked();
    controller().openSettings();
    app_->showSettings();
    machine_.settle();
    EXPECT_EQ(shown(), "") << "nothing to hang from";
    reopen();
    startPanel();
    EXPECT_EQ(shown(), "main");
    act("esc");
    startPanel();
    EXPECT_EQ(shown(), "") << "once";

    // What a changed mode took away waits as well.
    for (const char* words : {"click Settings", "click Settings", "click"}) {
        actAll(words);
        const std::string before = shown();
        const bool isOn = app_->preferences().menuBarIconMode() == MenuBarIconMode::on;
        choose(isOn ? MenuBarIconMode::stats : MenuBarIconMode::on);
        machine_.windowServer.hasPanel = false;
        machine_.advance(2s);
        EXPECT_EQ(shown(), "") << words;
        startPanel();
        EXPECT_EQ(shown(), before) << words;
        act("esc");
    }
}

TEST_F(StatusItemTest, APressThatIsToldOfAfterwardsClosesAndDoesNotOpenAgain) {
    machine_.windowServer.panelKnowsPresses = false;
    launch(false);
    const Rect button = *machine_.windowServer.buttonFrame();
    const auto pressButton = [&] {
        machine_.windowServer.click({button.midX(), button.midY()});
        machine_.settle();
    };
    EXPECT_EQ(shown(), "welcome");
    pressButton();
    EXPECT_EQ(shown(), "");
    store(defaultskey::kHasSeenWelcome, true);
    machine_.advance(300ms);
    pressButton();
    EXPECT_EQ(shown(), "main");
    pressButton();
    EXPECT_EQ(shown(), "") << "the same press";
    machine_.advance(300ms);
    pressButton();
    EXPECT_EQ(shown(), "main") << "another one";

    controller().openSettings();
    machine_.advance(300ms);
    EXPECT_EQ(shown(), "settings");
    pressButton();
    EXPECT_EQ(shown(), "main") << "settings give way to the dashboard, as in any panel";
    controller().togglePin();
    pressButton();
    EXPECT_EQ(shown(), "main") << "a pinned one stays";
}

TEST_F(StatusItemTest, AnotherStartShowsTheDashboardAndNeverClosesIt) {
    launch();
    for (const char* words : {"", "Pin Pin", "Settings"}) {
        actAll(words);
        reopen();
        EXPECT_EQ(shown(), "main") << words;
        machine_.advance(kEntrance);
        EXPECT_EQ(keyboard(), "main") << words;
    }
    store(defaultskey::kHasSeenWelcome, false);
    act("esc");
    reopen();
    EXPECT_EQ(shown(), "welcome") << "first things first";
}

TEST_F(StatusItemTest, TheMenuOpensShowsSettingsOfTheApplicationsOwnAndQuits) {
    launch();
    const auto choose = [menu = machine_.windowServer.contextMenu(), this](std::size_t index) {
        menu.at(index).action();
        machine_.settle();
        return shown();
    };
    EXPECT_EQ(choose(0), "main");
    EXPECT_EQ(choose(0), "main");
    act("esc");
    EXPECT_EQ(choose(1), "settings");
    EXPECT_EQ(choose(1), "settings") << "once";
    EXPECT_EQ(keyboard(), "settings");
    EXPECT_EQ(window("settings").frame().maxX(), 1600 - 8);
    EXPECT_FALSE(isUIVisible());
    ShellTest::choose(MenuBarIconMode::on);
    machine_.advance(3s);
    EXPECT_EQ(shown(), "settings") << "it is none of the item's popovers";
    EXPECT_EQ(machine_.windowServer.toolTip(), "CPU 0%, RAM 4.0G") << "beside an icon, too";
    EXPECT_EQ(choose(0), "main") << "instead of them";
    choose(2);
    EXPECT_TRUE(machine_.application.terminated);
}

}  // namespace
}  // namespace norvane
