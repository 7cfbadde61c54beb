#include <gtest/gtest.h>

#include <string>

#include "preferences/StoredValue.h"
#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class ApplicationTest : public ShellTest {};

TEST_F(ApplicationTest, TheItemStandsWhenTheLaunchReturnsAndTheRestFollowsFromTheQueue) {
    struct Case {
        const char* mode;
        double length;
        const char* label;
    };
    for (const Case& c : {Case{"stats", 54, "0% 0.0G"}, Case{"on", StatusItem::kSquareLength, ""}}) {
        SCOPED_TRACE(c.mode);
        app_.reset();
        store(defaultskey::kHasSeenWelcome, false);
        store(defaultskey::kMenuBarIconMode, c.mode);
        machine_.application.activationPolicy = ActivationPolicy::regular;
        machine_.application.activations = 0;
        const auto ticksBefore = ticks();
        const auto asked = machine_.userNotificationCenter.isGranted.asked();

        app_.emplace(machine_.platform());
        EXPECT_EQ(app_->delegate().statusBarController(), nullptr);
        app_->launch();
        EXPECT_EQ(machine_.application.activationPolicy, ActivationPolicy::accessory);
        EXPECT_EQ(length(), c.length);
        ASSERT_NE(machine_.windowServer.statusItemContent(), nullptr);
        EXPECT_EQ(label(), c.label);
        EXPECT_EQ(shown(), "");
        EXPECT_EQ(ticks(), ticksBefore);
        EXPECT_EQ(machine_.application.activations, 0);

        machine_.settle();
        EXPECT_EQ(shown(), "welcome");
        EXPECT_EQ(ticks(), ticksBefore + 1);
        EXPECT_EQ(machine_.application.activations, 2) << "the welcome's and the launch's";
        EXPECT_EQ(machine_.userNotificationCenter.isGranted.asked(), asked + 1);
        machine_.advance(1s);
    }
    EXPECT_EQ(machine_.sysctl.text(SysctlText::machdep_cpu_brand_string).asked(), 2U)
        << "read before any click";
}

class WelcomeTest : public ShellTest {
 protected:
    bool isSeen() {
        const auto stored = machine_.userDefaults.objectForKey(defaultskey::kHasSeenWelcome);
        return stored && storedBool(*stored).value_or(false);
    }
};

TEST_F(WelcomeTest, DismissedInAnyWayItIsNotSeenAndComesBackWithAClick) {
    launch(false);
    EXPECT_EQ(window("welcome").frame().size, (Size{340, 360}));
    EXPECT_EQ(keyboard(), "welcome");
    click();
    EXPECT_EQ(shown(), "welcome") << "a click during it does nothing";
    for (const char* way : {"outside", "esc", "focus"}) {
        act(way);
        EXPECT_EQ(shown(), "") << way;
        EXPECT_FALSE(isSeen()) << way;
        machine_.application.activateIgnoringOtherApps();
        machine_.advance(1s);
        EXPECT_EQ(shown(), "") << way << ": later activations show nothing";
        click();
        EXPECT_EQ(shown(), "welcome") << way;
    }
}

TEST_F(WelcomeTest, ContinuedItOpensTheDashboardATenthOfASecondLater) {
    launch(false);
    const int activations = machine_.application.activations;
    press("welcome", "Get Started");
    EXPECT_TRUE(isSeen());
    machine_.advance(99ms);
    EXPECT_EQ(shown(), "");
    machine_.advance(1ms);
    EXPECT_EQ(shown(), "main");
    EXPECT_EQ(machine_.application.activations, activations + 1);
    machine_.advance(kEntrance);
    EXPECT_EQ(keyboard(), "main");
    EXPECT_EQ(window("main").frame().maxX(), 1600 - 8);
}

TEST_F(WelcomeTest, ThePanelOrTheApplicationMayEndInTheMiddleOfIt) {
    launch(false);
    press("welcome", "Get Started");
    machine_.windowServer.hasPanel = false;
    machine_.advance(1s);
    EXPECT_EQ(shown(), "") << "the panel went in the tenth of a second";
    machine_.windowServer.hasPanel = true;
    for (const char* words : {"", "escape", "Get Started"}) {
        app_.reset();
        store(defaultskey::kHasSeenWelcome, false);
        launch(false);
        if (*words == 'e') machine_.windowServer.press(KeyEvent::Key::escape);
        if (*words == 'G') press("welcome", words);
        app_.reset();
        machine_.advance(1s);
        EXPECT_EQ(shown(), "") << words;
    }
}

}  // namespace
}  // namespace norvane
