#include <gtest/gtest.h>

#include "shell/MenuBarStatsText.h"
#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// What panels differ in, and what other starts of the application ask for.
class StatusItemTest : public ShellTest {
 protected:
    void choose(std::string_view title) {
        for (const StatusMenuItem& item : machine_.windowServer.contextMenu()) {
            if (item.title == title) item.action();
        }
        machine_.settle();
    }
    void reopen() {
        machine_.application.reopen();
        machine_.settle();
    }
};

TEST_F(StatusItemTest, APanelThatStartsLaterGetsWhatWasAskedForMeanwhile) {
    machine_.windowServer.hasPanel = false;
    launch(false);
    EXPECT_EQ(shown(), "");
    machine_.windowServer.startPanel();
    machine_.advance(1s);
    EXPECT_EQ(shown(), "welcome") << "the first thing to see is not lost";
    store(defaultskey::kHasSeenWelcome, true);
    pressEscape();

    machine_.windowServer.hasPanel = false;
    reopen();
    EXPECT_EQ(shown(), "");
    machine_.windowServer.startPanel();
    machine_.advance(1s);
    EXPECT_EQ(shown(), "main");
    pressEscape();
    machine_.windowServer.startPanel();
    machine_.advance(1s);
    EXPECT_EQ(shown(), "") << "once";
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
    reopen();
    EXPECT_EQ(shown(), "main");
    machine_.advance(kEntrance);
    EXPECT_EQ(keyboard(), "main");
    reopen();
    EXPECT_EQ(shown(), "main");
    controller().openSettings();
    machine_.settle();
    EXPECT_EQ(shown(), "settings");
    reopen();
    EXPECT_EQ(shown(), "main");
    store(defaultskey::kHasSeenWelcome, false);
    pressEscape();
    reopen();
    EXPECT_EQ(shown(), "welcome") << "first things first";
}

TEST_F(StatusItemTest, TheMenuOpensShowsTheSettingsSceneAndQuits) {
    launch();
    std::string titles;
    for (const StatusMenuItem& item : machine_.windowServer.contextMenu())
        titles += item.title + ' ';
    EXPECT_EQ(titles, "Open Settings Quit ");
    choose("Open");
    choose("Open");
    EXPECT_EQ(shown(), "main");
    pressEscape();
    choose("Settings");
    EXPECT_EQ(shown(), "settings");
    EXPECT_FALSE(machine_.application.terminated);
    choose("Quit");
    EXPECT_TRUE(machine_.application.terminated);
}

TEST_F(StatusItemTest, TheToolTipTellsTheFiguresInBothModes) {
    launch();
    for (const char* const mode : {"on", "stats"}) {
        store(defaultskey::kMenuBarIconMode, std::string(mode));
        machine_.advance(3s);
        const MenuBarStats& stats = controller().sampler().menuBarStats().get();
        EXPECT_GT(stats.ramTotal, 1);
        EXPECT_EQ(machine_.windowServer.toolTip(), menuBarToolTip(stats)) << mode;
    }
}

}  // namespace
}  // namespace norvane
