#include <gtest/gtest.h>

#include <functional>

#include "preferences/StoredValue.h"
#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class WelcomeTest : public ShellTest {
 protected:
    bool isSeen() {
        const auto stored = machine_.userDefaults.objectForKey(defaultskey::kHasSeenWelcome);
        return stored && storedBool(*stored).value_or(false);
    }
};

TEST_F(WelcomeTest, TheFirstStartShowsItOnceAtItsOwnSize) {
    launch(false);
    EXPECT_EQ(shown(), "welcome") << "asked for by the launch and by the activation";
    EXPECT_EQ(window("welcome").frame().size, (Size{340, 360}));
    EXPECT_EQ(keyboard(), "welcome");
    EXPECT_FALSE(isUIVisible());
    const AccessibleNode tree = window("welcome").content().accessibleTree();
    ASSERT_EQ(tree.children.size(), 3U) << "the logo says nothing";
    EXPECT_EQ(tree.children[2].name, "Get Started");
    EXPECT_EQ(tree.children[2].role, AccessibleRole::button);
    click();
    EXPECT_EQ(shown(), "welcome") << "a click during it does nothing";
}

TEST_F(WelcomeTest, DismissedInAnyWayItIsNotSeenAndComesBackWithAClick) {
    launch(false);
    struct Way {
        const char* name;
        std::function<void()> dismiss;
    };
    for (const Way& way : {Way{"outside", [&] { clickOutside(); }}, Way{"Esc", [&] { pressEscape(); }},
                           Way{"focus", [&] { focusElsewhere(); }}}) {
        way.dismiss();
        EXPECT_EQ(shown(), "") << way.name;
        EXPECT_FALSE(isSeen()) << way.name;
        machine_.application.activateIgnoringOtherApps();
        machine_.advance(1s);
        EXPECT_EQ(shown(), "") << way.name << ": later activations show nothing";
        click();
        EXPECT_EQ(shown(), "welcome") << way.name;
    }
}

TEST_F(WelcomeTest, ContinuedItOpensTheDashboardATenthOfASecondLater) {
    launch(false);
    const int activations = machine_.application.activations;
    clickOn("welcome", "Get Started");
    EXPECT_EQ(shown(), "");
    EXPECT_TRUE(isSeen());
    machine_.advance(99ms);
    EXPECT_EQ(shown(), "");
    machine_.advance(1ms);
    EXPECT_EQ(shown(), "main");
    EXPECT_TRUE(isUIVisible());
    EXPECT_EQ(machine_.application.activations, activations + 1);
    machine_.advance(kEntrance);
    EXPECT_EQ(keyboard(), "main");
    EXPECT_EQ(window("main").frame().maxX(), 1600 - 8);
    restart();
    EXPECT_EQ(shown(), "");
}

TEST_F(WelcomeTest, WaitsForAPanelAndForAClick) {
    machine_.windowServer.hasPanel = false;
    launch(false);
    EXPECT_EQ(shown(), "");
    machine_.windowServer.hasPanel = true;
    machine_.advance(1s);
    EXPECT_EQ(shown(), "");
    click();
    EXPECT_EQ(shown(), "welcome");
    clickOn("welcome", "Get Started");
    machine_.windowServer.hasPanel = false;
    machine_.advance(1s);
    EXPECT_EQ(shown(), "") << "the panel went in the tenth of a second";
    EXPECT_TRUE(isSeen());
}

TEST_F(WelcomeTest, TheApplicationEndsBeforeDuringAndAfterIt) {
    const auto ends = [&] {
        app_.reset();
        machine_.advance(1s);
        EXPECT_EQ(shown(), "");
        store(defaultskey::kHasSeenWelcome, false);
    };
    app_.emplace(machine_.platform());
    app_->launch();
    ends();
    launch(false);
    ends();
    launch(false);
    machine_.windowServer.press(KeyEvent::Key::escape);
    ends();
    launch(false);
    clickOn("welcome", "Get Started");
    machine_.advance(50ms);
    ends();
}

}  // namespace
}  // namespace norvane
