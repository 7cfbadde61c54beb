#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using enum SnapshotSection;

constexpr const char* kLowPower = "Low Power Mode is active. Conserving energy for extended use.";
constexpr const char* kSaturated = "Critical processor load. Every available cycle is currently utilized.";

// What the dashboard chooses to say and to show as it opens, in the whole application.
class OpeningTest : public ShellTest {
 protected:
    OpeningTest() { launch(); }

    // The first text below the heading.
    std::string sentence() {
        window("main").picture();
        for (const AccessibleNode& node : window("main").content().accessibleTree().children)
            if (node.role == AccessibleRole::text) return node.name;
        return {};
    }
    // Every sentence that is on screen at some time.
    std::set<std::string> sentencesWithin(std::chrono::milliseconds time) {
        std::set<std::string> sentences{sentence()};
        for (auto passed = 0ms; passed < time; passed += 100ms) {
            machine_.advance(100ms);
            sentences.insert(sentence());
        }
        return sentences;
    }
};

TEST_F(OpeningTest, APendingSentenceFromBeforeTheClosingIsNeverWritten) {
    click();
    machine_.advance(5s);
    ASSERT_EQ(sentence(), kOptimal);
    machine_.processInfo.lowPower.always(true);
    machine_.advance(1500ms);
    ASSERT_EQ(sentence(), kOptimal) << "pending";
    click();
    machine_.processInfo.lowPower.always(false);
    click();
    EXPECT_EQ(sentencesWithin(10s), std::set<std::string>{kOptimal});

    // The same sentence, seen before the closing, is news to the opening after it.
    machine_.processInfo.lowPower.always(true);
    machine_.advance(1500ms);
    click();
    machine_.processInfo.lowPower.always(false);
    machine_.windowServer.clickStatusItem();
    machine_.processInfo.lowPower.always(true);  // before the forced tick
    machine_.settle();
    EXPECT_EQ(sentencesWithin(2900ms), std::set<std::string>{kOptimal});
    machine_.advance(100ms);
    EXPECT_EQ(sentence(), kLowPower);
}

TEST_F(OpeningTest, AnOpeningShowsTheSentenceOfItsMomentAtOnce) {
    click();
    machine_.advance(5s);
    machine_.processInfo.lowPower.always(true);
    machine_.advance(1500ms);
    click();
    machine_.hostPort.processors.setLoad(100);
    machine_.advance(12s);
    click();
    EXPECT_EQ(sentencesWithin(5s), std::set<std::string>{kSaturated});
    click();
    machine_.hostPort.processors.setLoad(0);
    machine_.advance(12s);
    click();
    EXPECT_EQ(sentencesWithin(5s), std::set<std::string>{kLowPower});
}

// A popover that closed under a pin is shown again while it is visible: that is no opening.
TEST_F(OpeningTest, ShownWhileItIsShownThePodStaysAndAskingBeforehandChangesNothing) {
    PreferencesStore preferences(machine_.userDefaults);
    preferences.setIsSmartAutoExpandEnabled(false);
    store(defaultskey::kLastViewedPod, "storage");
    const auto sampler = PerformanceSampler::create(machine_.platform(), preferences);
    const SmartPodManager smartPodManager;
    const CPUHardwareInfo hardware(machine_.sysctl);
    const MenuRootView view(machine_.platform(), preferences, sampler, smartPodManager,
                            [&]() -> const CPUHardwareInfo& { return hardware; }, {});
    EXPECT_EQ(view.expandedSection(), std::nullopt);
    EXPECT_EQ(view.sectionIfOpened(), cpu);
    EXPECT_EQ(view.sectionIfOpened(), cpu);
    sampler->setUIVisible(true);
    sampler->setUIVisible(true);
    EXPECT_EQ(view.expandedSection(), cpu);
    EXPECT_EQ(view.sectionIfOpened(), storage);
    sampler->setUIVisible(false);
    EXPECT_EQ(view.expandedSection(), cpu);
    sampler->setUIVisible(true);
    EXPECT_EQ(view.expandedSection(), storage);
}

}  // namespace
}  // namespace norvane
