#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>

#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using enum SnapshotSection;

constexpr const char* kOptimal = "System is operating optimally within comfortable parameters.";
constexpr const char* kLowPower = "Low Power Mode is active. Conserving energy for extended use.";
constexpr const char* kSaturated = "Critical processor load. Every available cycle is currently utilized.";

// What the dashboard chooses to say and to show as it opens, in the whole application.
class OpeningTest : public ShellTest {
 protected:
    OpeningTest() { launch(); }

    // Opens and closes it, long enough for a snapshot.
    void look() {
        click();
        machine_.advance(1s);
        click();
    }
    bool isOpen() { return shown() == "main"; }
    // The pod that one click, from closed, expands.
    std::optional<SnapshotSection> opened() {
        click();
        EXPECT_TRUE(isOpen());
        const auto section = expandedSection();
        click();
        return section;
    }
    std::optional<SnapshotSection> expandedSection() {
        return controller().menuRootView()->expandedSection();
    }
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
    void setPressure(std::int64_t level) {
        machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(level);
    }
    void remember(DefaultsValue value) { store(defaultskey::kLastViewedPod, std::move(value)); }
};

// Run twice in one opening, the rule would answer with the remembered pod.
TEST_F(OpeningTest, OneClickRunsTheOpeningRuleOnce) {
    app_->preferences().setIsSmartAutoExpandEnabled(false);
    remember("storage");
    EXPECT_EQ(opened(), cpu);
    EXPECT_EQ(opened(), storage);
    remember("battery");
    EXPECT_EQ(opened(), battery);
}

TEST_F(OpeningTest, TheChoiceRestsOnWhatWasPublishedWhenItWasLastOpen) {
    remember("storage");
    click();
    EXPECT_EQ(expandedSection(), cpu) << "nothing is published yet";
    machine_.advance(5s);
    setPressure(2);
    machine_.advance(1min);
    EXPECT_EQ(expandedSection(), cpu) << "no pod moves under the user's eyes";
    click();
    setPressure(1);
    machine_.advance(1min);
    EXPECT_EQ(opened(), memory);
    look();
    EXPECT_EQ(opened(), storage) << "calm again";
}

TEST_F(OpeningTest, WhateverIsStoredAsTheLastViewedPodOpensAPod) {
    look();
    struct Case {
        DefaultsValue stored;
        SnapshotSection section;
    };
    for (const bool isSmart : {true, false}) {
        app_->preferences().setIsSmartAutoExpandEnabled(isSmart);
        opened();
        for (const Case& c : {Case{"battery", battery}, Case{"memory", memory}, Case{"Memory", cpu},
                              Case{"storage", storage}, Case{std::string("storage\0", 8), cpu}, Case{"", cpu},
                              Case{3.0, cpu}, Case{true, cpu}, Case{std::string(1'000'000, 'm'), cpu}}) {
            remember(c.stored);
            EXPECT_EQ(opened(), c.section) << c.stored.index() << (isSmart ? " smart" : " plain");
        }
    }
}

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
    machine_.advance(30s);
    click();
    EXPECT_EQ(sentencesWithin(5s), std::set<std::string>{kSaturated});
    click();
    machine_.hostPort.processors.setLoad(0);
    machine_.advance(30s);
    click();
    EXPECT_EQ(sentencesWithin(5s), std::set<std::string>{kLowPower});
}

// A popover that closed under a pin is shown again while it is visible: that is no opening.
TEST_F(OpeningTest, ShownWhileItIsShownThePodStaysAndAskingBeforehandChangesNothing) {
    PreferencesStore preferences(machine_.userDefaults);
    preferences.setIsSmartAutoExpandEnabled(false);
    remember("storage");
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
