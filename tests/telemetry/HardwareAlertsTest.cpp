#include "telemetry/HardwareAlerts.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

const std::string kNothing;
const std::string kCPU = "CPU Sustained Load";
const std::string kMemory = "Memory Sustained Load";
const std::string kStorage = "Storage Warning";
const std::string kBattery = "Battery Warning";

class AlertsTest : public testing::Test {
 protected:
    AlertsTest() {
        preferences_.setSustainedLoadNotificationsEnabled(true);
        setThresholdAlerts(true);
    }
    void setThresholdAlerts(bool areEnabled) {
        preferences_.setStorageAlertEnabled(areEnabled);
        preferences_.setBatteryAlertEnabled(areEnabled);
    }
    // Looks, each so much later than the one before, and the titles that were handed in since that one.
    void expectTold(const std::vector<std::pair<std::chrono::nanoseconds, std::string>>& looks) {
        for (std::size_t i = 0; i < looks.size(); ++i) {
            machine_.advance(looks[i].first);
            check();
            EXPECT_EQ(toldSinceLastLook(), looks[i].second) << "look " << i;
        }
    }
    std::string toldSinceLastLook() {
        const auto& added = machine_.userNotificationCenter.added;
        std::string titles;
        for (; seen_ < added.size(); ++seen_)
            titles += (titles.empty() ? "" : ", ") + added[seen_].content.title;
        return titles;
    }
    virtual void check() {}

    ScriptedMachine machine_;
    PreferencesStore preferences_{machine_.userDefaults};

 private:
    std::size_t seen_ = 0;
};

DiskSnapshot volume(bool isBootVolume, double freeGB) {
    return {.id = {}, .name = {}, .isBootVolume = isBootVolume, .availableForImportantUsage = freeGB};
}

// The rules alone, on snapshots as the test says.
class HardwareAlertsTest : public AlertsTest {
 protected:
    HardwareAlertsTest() {
        setFree(500);
        machine_.advance(31s);  // past the grace period
    }
    void check() override { alerts_.check(snapshot_); }
    void setCPU(ComponentState state) { snapshot_.cpuState = state; }
    void setFree(double freeGB) {
        snapshot_.volumes = {volume(false, 1), volume(true, freeGB), volume(true, 1)};
    }
    void setBattery(bool isOnBattery, std::int64_t percentage) {
        snapshot_.isOnBattery = isOnBattery;
        snapshot_.batteryPercentage = percentage;
    }

    static constexpr auto kNormal = ComponentState::normal;
    static constexpr auto kCritical = ComponentState::critical;

    HardwareAlerts alerts_{machine_.platform(), preferences_};
    SystemSnapshot snapshot_{};
};

TEST_F(HardwareAlertsTest, TellsOfAStretchOnceWhenItHasLastedThreeMinutesAndACalmCheckEndsIt) {
    setCPU(kCritical);
    expectTold({{0s, kNothing}, {180s - 1ns, kNothing}, {1ns, kCPU}, {1s, kNothing}, {24h, kNothing}});
    setCPU(kNormal);
    expectTold({{1s, kNothing}});
    setCPU(kCritical);
    expectTold({{1s, kNothing}, {179s, kNothing}});
    setCPU(kNormal);
    expectTold({{1s, kNothing}});
    setCPU(kCritical);
    expectTold({{1s, kNothing}, {179s, kNothing}, {1s, kCPU}});
}

TEST_F(HardwareAlertsTest, ComponentsHaveStretchesOfTheirOwnAndTheProcessorGoesFirst) {
    setCPU(kCritical);
    expectTold({{0s, kNothing}});
    snapshot_.memoryState = kCritical;
    expectTold({{60s, kNothing}, {120s, kCPU}});
    setCPU(kNormal);
    expectTold({{60s, kMemory}});
    snapshot_.memoryState = kNormal;
    expectTold({{1s, kNothing}});
    snapshot_.cpuState = snapshot_.memoryState = kCritical;
    expectTold({{1s, kNothing}, {180s, kCPU + ", " + kMemory}});
}

TEST_F(HardwareAlertsTest, SwitchedOffAtACheckAStretchAndWhatWasToldOfItAreForgotten) {
    setCPU(kCritical);
    expectTold({{0s, kNothing}});
    preferences_.setSustainedLoadNotificationsEnabled(false);
    expectTold({{179s, kNothing}, {1h, kNothing}});
    preferences_.setSustainedLoadNotificationsEnabled(true);
    expectTold({{1s, kNothing}, {179s, kNothing}, {1s, kCPU}});
    preferences_.setSustainedLoadNotificationsEnabled(false);
    expectTold({{1s, kNothing}});
    preferences_.setSustainedLoadNotificationsEnabled(true);
    expectTold({{1s, kNothing}});
    preferences_.setSustainedLoadNotificationsEnabled(false);
    machine_.advance(500ms);  // between two checks it changes nothing
    preferences_.setSustainedLoadNotificationsEnabled(true);
    expectTold({{179'500ms, kCPU}});
}

TEST_F(HardwareAlertsTest, TellsOfSpaceAtTheThresholdOnceADayUnlessItRoseByMoreThanFive) {
    setFree(20.001);
    expectTold({{1s, kNothing}});
    setFree(20);
    expectTold({{1s, kStorage}});
    setFree(25);
    expectTold({{1s, kNothing}});
    setFree(0);
    expectTold({{1s, kNothing}, {24h - 2s - 1ns, kNothing}, {1ns, kStorage}});
    setFree(25.001);
    expectTold({{1s, kNothing}});
    setFree(20);
    expectTold({{1s, kStorage}});
}

TEST_F(HardwareAlertsTest, TellsOfTheBatteryAtTheThresholdOnceADayUnlessPluggedIn) {
    setBattery(true, 16);
    expectTold({{1s, kNothing}});
    setBattery(true, 15);
    expectTold({{1s, kBattery}});
    setBattery(true, 90);
    expectTold({{1s, kNothing}});
    setBattery(true, 14);
    expectTold({{24h - 1s - 1ns, kNothing}, {1ns, kBattery}});
    setBattery(false, 14);
    expectTold({{1s, kNothing}});
    setBattery(true, 14);
    expectTold({{1s, kBattery}});
}

TEST_F(HardwareAlertsTest, SwitchedOffTheThresholdAlertsNeitherTellNorArm) {
    setFree(10);
    setBattery(true, 10);
    expectTold({{1s, kStorage + ", " + kBattery}});
    setThresholdAlerts(false);
    setFree(500);
    setBattery(false, 100);
    expectTold({{1s, kNothing}});
    setFree(10);
    setBattery(true, 10);
    setThresholdAlerts(true);
    expectTold({{1s, kNothing}});
    setThresholdAlerts(false);
    expectTold({{48h, kNothing}});
}

TEST_F(HardwareAlertsTest, WhatIsToldStandsInWholeNumbersAndPlainWords) {
    preferences_.setStorageAlertThresholdGB(20.9);
    preferences_.setBatteryAlertThresholdPct(15.9);
    snapshot_.cpuState = snapshot_.memoryState = kCritical;
    check();
    setFree(20.9);
    setBattery(true, 15);
    machine_.advance(180s);
    check();
    const std::vector<std::pair<std::string, std::string>> want{
        {kCPU, "The processor has been pinned at maximum capacity for over 3 minutes."},
        {kMemory,
         "Memory pressure has been critically high for over 3 minutes. Consider closing inactive apps."},
        {kStorage, "Your Mac has less than 20 GB of free space remaining."},
        {kBattery, "Battery has dropped below 15%."}};
    const auto& added = machine_.userNotificationCenter.added;
    ASSERT_EQ(added.size(), want.size());
    for (std::size_t i = 0; i < want.size(); ++i) {
        EXPECT_EQ(added[i].content,
                  (NotificationContent{want[i].first, want[i].second, NotificationSound::defaultSound}));
        EXPECT_EQ(added[i].timeInterval, 1s);
        EXPECT_TRUE(i == 0 || added[i].identifier != added[i - 1].identifier);
    }
}

TEST_F(HardwareAlertsTest, InTheFirstThirtySecondsAnAlertCountsAsToldAndIsNot) {
    for (const auto& [age, isDelivered] : {std::pair{30s + 0ns, false}, {30s + 1ns, true}}) {
        HardwareAlerts young(machine_.platform(), preferences_);
        const auto toldAfter = [&](std::chrono::nanoseconds later, bool isOnBattery) {
            machine_.advance(later);
            setBattery(isOnBattery, 10);
            young.check(snapshot_);
            return toldSinceLastLook();
        };
        setFree(10);
        EXPECT_EQ(toldAfter(age, true) != kNothing, isDelivered) << age.count();
        EXPECT_EQ(toldAfter(1h, true), kNothing) << "the day has begun";
        EXPECT_EQ(toldAfter(0s, false), kNothing);
        EXPECT_EQ(toldAfter(0s, true), kBattery) << "armed again as ever";
        EXPECT_EQ(toldAfter(23h, true), kStorage);
    }
}

TEST_F(HardwareAlertsTest, AFailureIsOneLineAndNoSecondTry) {
    for (const auto& [error, want] : std::vector<std::pair<std::string, std::string>>{
             {"first\nsecond\r\n\tthird\x7F", "first second   third "}, {"", ""}}) {
        machine_.standardOutput.lines.clear();
        machine_.userNotificationCenter.error.always(error);
        setBattery(true, 10);
        expectTold({{1s, kBattery}, {1h, kNothing}});
        EXPECT_EQ(machine_.standardOutput.lines,
                  std::vector<std::string>{"Norvane: Failed to deliver notification - " + want});
        setBattery(false, 10);
        expectTold({{1s, kNothing}});
    }
    EXPECT_TRUE(machine_.userNotificationCenter.shown.empty());
}

// The rules as a running sampler applies them.
class SamplerAlertsTest : public AlertsTest {
 protected:
    SamplerAlertsTest() {
        setFree(500);
        setBattery(true, 90);
        sampler_->start();
    }
    void setVisible(bool isVisible) { sampler_->setUIVisible(isVisible); }
    void setLoad(double percent) { machine_.hostPort.processors.setLoad(percent); }
    void setFree(std::int64_t freeGB) {
        VolumeResourceValues values;
        values.volumeTotalCapacity = 1'000'000'000'000;
        values.volumeAvailableCapacity = freeGB * 1'000'000'000;
        values.volumeIsRootFileSystem = true;
        machine_.fileManager.volumes.always({{{"/", values}}});
    }
    void setBattery(bool isOnBattery, int percentage) {
        machine_.registry.services(RegistryService::AppleSmartBattery)
            .always({{RegistryEntry({{"CurrentCapacity", percentage},
                                     {"MaxCapacity", 100},
                                     {"ExternalConnected", !isOnBattery}})}});
    }

    std::shared_ptr<PerformanceSampler> sampler_ =
        PerformanceSampler::create(machine_.platform(), preferences_);
};

TEST_F(SamplerAlertsTest, TheFirstFullTickExaminesNothingAndNoneDoesWhileHidden) {
    setFree(5);
    setBattery(true, 5);
    setLoad(100);
    expectTold({{1h, kNothing}});
    setVisible(true);
    expectTold({{0s, kNothing}, {1s, kStorage + ", " + kBattery}});
    setVisible(false);
    expectTold({{1h, kNothing}});
}

TEST_F(SamplerAlertsTest, AReopeningExaminesFirstWhatWasOnScreenAtTheClosing) {
    preferences_.setStorageAlertEnabled(false);
    setFree(5);
    machine_.advance(1min);
    setVisible(true);
    machine_.settle();
    setVisible(false);
    setFree(500);
    setBattery(true, 5);
    preferences_.setStorageAlertEnabled(true);
    expectTold({{1h, kNothing}});
    setVisible(true);
    expectTold({{0s, kStorage}, {1s, kBattery}});
}

TEST_F(SamplerAlertsTest, ATickGoesByWhatIsPublishedAndNotByWhatIsOnItsWay) {
    machine_.advance(1min);
    setVisible(true);
    machine_.settle();
    machine_.dispatch.mainLoopQueue().hold();
    setBattery(true, 5);
    expectTold({{10s, kNothing}});
    machine_.dispatch.mainLoopQueue().letGo();
    expectTold({{0s, kNothing}, {1s, kBattery}});
}

TEST_F(SamplerAlertsTest, ALastingLoadIsToldAfterItsDebouncingAndThreeMinutes) {
    machine_.advance(1min);
    setVisible(true);
    machine_.settle();
    setLoad(100);
    machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(4);
    // Seen after 1 s, critical after 6, examined for the first time after 7.
    expectTold({{186s, kNothing}, {1s, kCPU + ", " + kMemory}, {1h, kNothing}});
    // A dip shorter than ten seconds does not end the stretch, a longer one does.
    setLoad(0);
    expectTold({{9s, kNothing}});
    setLoad(100);
    expectTold({{10min, kNothing}});
    setLoad(0);
    expectTold({{11s, kNothing}});
    setLoad(100);
    expectTold({{186s, kNothing}, {1s, kCPU}});
    // And one that is seen at the closing goes on while nobody looks.
    setLoad(0);
    machine_.advance(11s);
    setLoad(100);
    machine_.advance(10s);
    setVisible(false);
    expectTold({{1h, kNothing}});
    setVisible(true);
    expectTold({{0s, kCPU}});
}

}  // namespace
}  // namespace norvane
