#include <gtest/gtest.h>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

class StartUpTest : public ShellTest {};

TEST_F(StartUpTest, TheItemStandsWhenTheLaunchReturnsAndTheRestFollowsFromTheQueue) {
    struct Case {
        const char* mode;
        double length;
        std::size_t columns;  // of the label
    };
    for (const Case& c : {Case{"stats", 54, 2}, Case{"on", StatusItem::kSquareLength, 0}}) {
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
        EXPECT_EQ(machine_.application.activationPolicy, ActivationPolicy::accessory) << c.mode;
        EXPECT_EQ(machine_.windowServer.statusItemLength(), c.length) << c.mode;
        ASSERT_NE(machine_.windowServer.statusItemContent(), nullptr) << c.mode;
        machine_.windowServer.statusItemPicture();
        const AccessibleNode item = machine_.windowServer.statusItemContent()->accessibleTree();
        EXPECT_EQ(item.children.size(), c.columns == 0 ? 1U : c.columns) << c.mode;
        EXPECT_EQ(shown(), "") << c.mode;
        EXPECT_EQ(ticks(), ticksBefore) << c.mode;
        EXPECT_EQ(machine_.application.activations, 0) << c.mode;

        machine_.settle();
        EXPECT_EQ(shown(), "welcome") << c.mode;
        EXPECT_EQ(ticks(), ticksBefore + 1) << c.mode;
        EXPECT_EQ(machine_.application.activations, 2) << c.mode << ": the welcome's and the launch's";
        EXPECT_EQ(machine_.userNotificationCenter.isGranted.asked(), asked + 1) << c.mode;
        machine_.advance(1s);
    }
}

}  // namespace
}  // namespace norvane
