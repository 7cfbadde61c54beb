#include <gtest/gtest.h>

#include <string>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// What a user sees of the machine, in the label and on the dashboard.
class ApplicationTest : public ShellTest {
 protected:
    bool isOpen() { return shown() == "main"; }
    // "12% 4.0G"
    std::string label() {
        machine_.windowServer.statusItemPicture();
        std::string text;
        for (const AccessibleNode& column :
             machine_.windowServer.statusItemContent()->accessibleTree().children) {
            text += (text.empty() ? "" : " ") + column.value;
        }
        return text;
    }
    AccessibleNode tree() {
        window("main").picture();
        return window("main").content().accessibleTree();
    }
    // The sentence and two of the pods, separated by bars.
    std::string dashboard() {
        const AccessibleNode all = tree();
        std::string told;
        for (const AccessibleNode& node : all.children) {
            if (node.role == AccessibleRole::text && told.empty()) told = node.name;
        }
        for (const char* pod : {"CPU", "RAM"}) {
            const AccessibleNode* const node = find(all, pod);
            told += std::string(" | ") + pod + ' ' + (node != nullptr ? node->value : "?");
        }
        return told;
    }
};

constexpr const char* kInitializing = "Initializing system telemetry...";

std::string told(const std::string& status, const std::string& cpu, const std::string& ram) {
    return status + " | CPU " + cpu + " % | RAM " + ram + " GB used";
}

TEST_F(ApplicationTest, ComesUpAsALabelOfFiftyFourPointsThatFollowsTheMachine) {
    machine_.hostPort.processors.setLoad(37);
    store(defaultskey::kHasSeenWelcome, true);
    app_.emplace(machine_.platform());
    app_->launch();
    EXPECT_EQ(machine_.windowServer.statusItemLength(), 54);
    EXPECT_EQ(label(), "0% 0.0G") << "before the first tick";
    EXPECT_EQ(ticks(), 0U) << "the sampler starts after the launch";
    machine_.settle();
    EXPECT_EQ(label(), "0% 4.0G");
    machine_.advance(1s);
    EXPECT_EQ(label(), "37% 4.0G");
    EXPECT_EQ(machine_.sysctl.text(SysctlText::machdep_cpu_brand_string).asked(), 1U)
        << "warmed up before any click";
    EXPECT_EQ(app_->cpuHardwareInfo().chipName(), "Scripted Processor");
}

TEST_F(ApplicationTest, AClickOpensTheDashboardLiveAndInsideTheScreenAndASecondOneClosesIt) {
    launch();
    machine_.advance(10s);
    machine_.hostPort.processors.setLoad(50);
    machine_.advance(100ms);
    const auto before = ticks();
    click();
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(ticks(), before + 1) << "the forced tick";
    EXPECT_EQ(machine_.application.activations, 2);
    machine_.advance(kEntrance);
    const Rect frame = window("main").frame();
    EXPECT_EQ(frame.size.width, 520);
    EXPECT_EQ(frame.maxX(), 1600 - 8) << "8 points inside";
    EXPECT_EQ(frame.minY(), 28);
    EXPECT_EQ(window("main").placesShown().size(), 1U) << "it came up where it stays";
    EXPECT_EQ(dashboard(), told(kInitializing, "50.00", "4.00"))
        << "the first sentence waits its three seconds";
    machine_.advance(3s);
    EXPECT_EQ(dashboard(), told(kOptimal, "50.00", "4.00"));
    click();
    EXPECT_FALSE(isOpen());
    const auto snapshot = app_->delegate().statusBarController()->sampler().snapshot().get();
    machine_.advance(10s);
    EXPECT_EQ(app_->delegate().statusBarController()->sampler().snapshot().get(), snapshot) << "hidden again";
}

TEST_F(ApplicationTest, APressOnTheItemClosesAndDoesNotOpenAgain) {
    launch();
    click();
    EXPECT_TRUE(isUIVisible());
    machine_.windowServer.click({window("main").frame().midX(), window("main").frame().minY() + 4});
    EXPECT_TRUE(isOpen()) << "a press inside";
    machine_.windowServer.click(machine_.windowServer.buttonFrame()->origin);
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(isUIVisible());
}

TEST_F(ApplicationTest, QuitIsAButtonThatLightsUpUnderThePointer) {
    launch();
    open();
    const AccessibleNode quit = tree().children.back();
    ASSERT_EQ(quit.name, "Quit");
    EXPECT_EQ(quit.role, AccessibleRole::button);
    EXPECT_EQ(quit.frame.size, (Size{496, 24}));
    const std::size_t plain = flatItems(window("main").picture().items).size();
    window("main").content().pointer({PointerEvent::Kind::move, {quit.frame.midX(), quit.frame.midY()}});
    EXPECT_EQ(flatItems(window("main").picture().items).size(), plain + 1) << "the fill";
    pressEscape();
    open();
    const std::size_t reopened = flatItems(window("main").picture().items).size();
    window("main").content().pointer({PointerEvent::Kind::leave, {}});
    EXPECT_EQ(flatItems(window("main").picture().items).size(), reopened)
        << "a reopened dashboard is not hovered";
    EXPECT_FALSE(machine_.application.terminated);
    clickOn("main", "Quit");
    EXPECT_TRUE(machine_.application.terminated);
}

}  // namespace
}  // namespace norvane
