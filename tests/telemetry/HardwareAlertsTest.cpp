#include "telemetry/HardwareAlerts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kNothing = "";
constexpr const char* kCPU = "CPU Sustained Load";
constexpr const char* kMemory = "Memory Sustained Load";
constexpr const char* kStorage = "Storage Warning";
constexpr const char* kBattery = "Battery Warning";

// The titles handed in since the last look.
class Told {
 public:
    explicit Told(const ScriptedUserNotificationCenter& center) : center_(center) {}

    std::string sinceLastLook() {
        std::string titles;
        for (; seen_ < center_.added.size(); ++seen_)
            titles += (titles.empty() ? "" : ", ") + center_.added[seen_].content.title;
        return titles;
    }

 private:
    const ScriptedUserNotificationCenter& center_;
    std::size_t seen_ = 0;
};

DiskSnapshot volume(bool isBootVolume, double freeGB) {
    return {.id = {}, .name = {}, .isBootVolume = isBootVolume, .availableForImportantUsage = freeGB};
}

// The rules alone, on snapshots as the test says.
class HardwareAlertsTest : public testing::Test {
 protected:
    void SetUp() override {
        preferences_.setSustainedLoadNotificationsEnabled(true);
        preferences_.setStorageAlertEnabled(true);
        preferences_.setBatteryAlertEnabled(true);
        setFree(500);
        machine_.advance(31s);  // past the grace period
    }
    // A check so much later, and what it tells.
    std::string after(std::chrono::nanoseconds later) {
        machine_.advance(later);
        alerts_.check(snapshot_);
        return told_.sinceLastLook();
    }
    void setCPU(ComponentState state) { snapshot_.cpuState = state; }
    void setMemory(ComponentState state) { snapshot_.memoryState = state; }
    void setFree(double freeGB) {
        snapshot_.volumes = {volume(false, 1), volume(true, freeGB), volume(true, 1)};
    }
    void setBattery(bool isOnBattery, std::int64_t percentage) {
        snapshot_.isOnBattery = isOnBattery;
        snapshot_.batteryPercentage = percentage;
    }

    static constexpr auto kNormal = ComponentState::normal;
    static constexpr auto kCritical = ComponentState::critical;

    ScriptedMachine machine_;
    PreferencesStore preferences_{machine_.userDefaults};
    HardwareAlerts alerts_{machine_.platform(), preferences_};
    Told told_{machine_.userNotificationCenter};
    SystemSnapshot snapshot_{};
};

TEST_F(HardwareAlertsTest, TellsOfAStretchOnceWhenItHasLastedThreeMinutes) {
    setCPU(kCritical);
    EXPECT_EQ(after(0s), kNothing);
    EXPECT_EQ(after(180s - 1ns), kNothing);
    EXPECT_EQ(after(1ns), kCPU);
    EXPECT_EQ(after(1s), kNothing);
    EXPECT_EQ(after(24h), kNothing);
    setCPU(kNormal);
    EXPECT_EQ(after(1s), kNothing);
    setCPU(kCritical);
    EXPECT_EQ(after(1s), kNothing);
    EXPECT_EQ(after(180s), kCPU) << "a new stretch";
}

TEST_F(HardwareAlertsTest, OneCalmCheckEndsAStretch) {
    setCPU(kCritical);
    after(0s);
    after(179s);
    setCPU(kNormal);
    after(1s);
    setCPU(kCritical);
    EXPECT_EQ(after(1s), kNothing);
    EXPECT_EQ(after(179s), kNothing);
    EXPECT_EQ(after(1s), kCPU);
}

TEST_F(HardwareAlertsTest, ComponentsHaveStretchesOfTheirOwnAndTheProcessorGoesFirst) {
    setCPU(kCritical);
    after(0s);
    setMemory(kCritical);
    EXPECT_EQ(after(60s), kNothing);
    EXPECT_EQ(after(120s), kCPU);
    setCPU(kNormal);
    EXPECT_EQ(after(60s), kMemory);
    setMemory(kNormal);
    after(1s);
    setCPU(kCritical);
    setMemory(kCritical);
    after(1s);
    EXPECT_EQ(after(180s), std::string(kCPU) + ", " + kMemory);
}

TEST_F(HardwareAlertsTest, SwitchedOffAStretchAndWhatWasToldOfItAreForgotten) {
    setCPU(kCritical);
    after(0s);
    preferences_.setSustainedLoadNotificationsEnabled(false);
    EXPECT_EQ(after(179s), kNothing);
    EXPECT_EQ(after(1h), kNothing);
    preferences_.setSustainedLoadNotificationsEnabled(true);
    EXPECT_EQ(after(1s), kNothing) << "the three minutes begin anew";
    EXPECT_EQ(after(179s), kNothing);
    EXPECT_EQ(after(1s), kCPU);
    preferences_.setSustainedLoadNotificationsEnabled(false);
    after(1s);
    preferences_.setSustainedLoadNotificationsEnabled(true);
    after(1s);
    EXPECT_EQ(after(180s), kCPU);
}

TEST_F(HardwareAlertsTest, ASwitchTurnedBetweenTwoChecksChangesNothing) {
    setCPU(kCritical);
    after(0s);
    preferences_.setSustainedLoadNotificationsEnabled(false);
    machine_.advance(500ms);
    preferences_.setSustainedLoadNotificationsEnabled(true);
    EXPECT_EQ(after(179'500ms), kCPU);
}

TEST_F(HardwareAlertsTest, TellsOfSpaceAtTheThresholdOnceADayUnlessItRoseByMoreThanFive) {
    setFree(20.001);
    EXPECT_EQ(after(1s), kNothing);
    setFree(20);
    EXPECT_EQ(after(1s), kStorage);
    setFree(25);
    EXPECT_EQ(after(1s), kNothing) << "not far enough to be armed again";
    setFree(0);
    EXPECT_EQ(after(1s), kNothing);
    EXPECT_EQ(after(24h - 2s - 1ns), kNothing);
    EXPECT_EQ(after(1ns), kStorage);
    setFree(25.001);
    EXPECT_EQ(after(1s), kNothing);
    setFree(20);
    EXPECT_EQ(after(1s), kStorage);
}

TEST_F(HardwareAlertsTest, WithoutABootVolumeTheBatteryIsCheckedAllTheSame) {
    setFree(1);
    EXPECT_EQ(after(1s), kStorage);
    snapshot_.volumes = {volume(false, 500)};
    setBattery(true, 5);
    EXPECT_EQ(after(1s), kBattery);
    setFree(1);
    EXPECT_EQ(after(1s), kNothing) << "its absence armed nothing";
}

TEST_F(HardwareAlertsTest, TellsOfTheBatteryAtTheThresholdOnceADayUnlessPluggedIn) {
    setBattery(true, 16);
    EXPECT_EQ(after(1s), kNothing);
    setBattery(true, 15);
    EXPECT_EQ(after(1s), kBattery);
    setBattery(true, 90);
    EXPECT_EQ(after(1s), kNothing);
    setBattery(true, 14);
    EXPECT_EQ(after(24h - 1s - 1ns), kNothing) << "a rise on battery arms nothing";
    EXPECT_EQ(after(1ns), kBattery);
    setBattery(false, 14);
    EXPECT_EQ(after(1s), kNothing);
    setBattery(true, 14);
    EXPECT_EQ(after(1s), kBattery);
}

TEST_F(HardwareAlertsTest, SwitchedOffTheThresholdAlertsNeitherTellNorArm) {
    setFree(10);
    setBattery(true, 10);
    EXPECT_EQ(after(1s), std::string(kStorage) + ", " + kBattery);
    preferences_.setStorageAlertEnabled(false);
    preferences_.setBatteryAlertEnabled(false);
    setFree(500);
    setBattery(false, 100);
    EXPECT_EQ(after(1s), kNothing);
    setFree(10);
    setBattery(true, 10);
    preferences_.setStorageAlertEnabled(true);
    preferences_.setBatteryAlertEnabled(true);
    EXPECT_EQ(after(1s), kNothing) << "the day goes on";
    preferences_.setStorageAlertEnabled(false);
    preferences_.setBatteryAlertEnabled(false);
    EXPECT_EQ(after(48h), kNothing);
}

TEST_F(HardwareAlertsTest, EveryCheckGoesByThePreferencesAsTheyAreThen) {
    setFree(50);
    setBattery(true, 50);
    EXPECT_EQ(after(1s), kNothing);
    preferences_.setStorageAlertThresholdGB(50);
    EXPECT_EQ(after(1s), kStorage);
    preferences_.setBatteryAlertThresholdPct(50);
    EXPECT_EQ(after(1s), kBattery);
}

TEST_F(HardwareAlertsTest, WhatIsToldStandsInWholeNumbersAndPlainWords) {
    preferences_.setStorageAlertThresholdGB(20.9);
    preferences_.setBatteryAlertThresholdPct(15.9);
    setCPU(kCritical);
    setMemory(kCritical);
    after(0s);
    setFree(20.9);
    setBattery(true, 15);
    after(180s);
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
        EXPECT_EQ(added[i].identifier.size(), 36U);
        EXPECT_TRUE(i == 0 || added[i].identifier != added[i - 1].identifier);
    }
}

TEST_F(HardwareAlertsTest, InTheFirstThirtySecondsAnAlertCountsAsToldAndIsNot) {
    for (const auto& [age, isDelivered] : {std::pair{0ns, false}, {30s, false}, {30s + 1ns, true}}) {
        HardwareAlerts young(machine_.platform(), preferences_);
        setFree(10);
        setBattery(true, 10);
        machine_.advance(age);
        young.check(snapshot_);
        EXPECT_EQ(told_.sinceLastLook() != kNothing, isDelivered) << age.count();
        machine_.advance(1h);
        young.check(snapshot_);
        EXPECT_EQ(told_.sinceLastLook(), kNothing) << "the day has begun";
        setBattery(false, 10);
        young.check(snapshot_);
        setBattery(true, 10);
        young.check(snapshot_);
        EXPECT_EQ(told_.sinceLastLook(), kBattery) << "armed again as ever";
        machine_.advance(23h);
        young.check(snapshot_);
        EXPECT_EQ(told_.sinceLastLook(), kStorage);
    }
}

TEST_F(HardwareAlertsTest, AFailureIsOneLineAndNothingElse) {
    for (const auto& [error, want] : std::vector<std::pair<std::string, std::string>>{
             {"no such name", "no such name"},
             {"first\nsecond\r\n\tthird\x7F", "first second   third "},
             {"", ""}}) {
        machine_.standardOutput.lines.clear();
        machine_.userNotificationCenter.error.always(error);
        setBattery(true, 10);
        EXPECT_EQ(after(1s), kBattery);
        EXPECT_EQ(after(1h), kNothing) << "no second try";
        EXPECT_EQ(machine_.standardOutput.lines,
                  std::vector<std::string>{"Norvane: Failed to deliver notification - " + want});
        setBattery(false, 10);
        after(1s);
    }
    EXPECT_TRUE(machine_.userNotificationCenter.shown.empty());
}

// The rules as a running sampler applies them.
class SamplerAlertsTest : public testing::Test {
 protected:
    void SetUp() override {
        preferences_.setSustainedLoadNotificationsEnabled(true);
        preferences_.setStorageAlertEnabled(true);
        preferences_.setBatteryAlertEnabled(true);
        setFree(500);
        setBattery(true, 90);
        sampler_->start();
    }
    std::string after(std::chrono::nanoseconds later) {
        machine_.advance(later);
        return told_.sinceLastLook();
    }
    std::string opened() {
        sampler_->setUIVisible(true);
        return after(0s);
    }
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

    ScriptedMachine machine_;
    PreferencesStore preferences_{machine_.userDefaults};
    std::shared_ptr<PerformanceSampler> sampler_ =
        PerformanceSampler::create(machine_.platform(), preferences_);
    Told told_{machine_.userNotificationCenter};
};

TEST_F(SamplerAlertsTest, TheFirstFullTickExaminesNothingAndNoneDoesWhileHidden) {
    setFree(5);
    setBattery(true, 5);
    machine_.hostPort.processors.setLoad(100);
    EXPECT_EQ(after(1h), kNothing);
    EXPECT_EQ(opened(), kNothing);
    EXPECT_EQ(after(1s), std::string(kStorage) + ", " + kBattery);
    sampler_->setUIVisible(false);
    EXPECT_EQ(after(1h), kNothing);
}

TEST_F(SamplerAlertsTest, AReopeningExaminesFirstWhatWasOnScreenAtTheClosing) {
    preferences_.setStorageAlertEnabled(false);
    setFree(5);
    machine_.advance(1min);
    opened();
    sampler_->setUIVisible(false);
    setFree(500);
    setBattery(true, 5);
    preferences_.setStorageAlertEnabled(true);
    EXPECT_EQ(after(1h), kNothing);
    EXPECT_EQ(opened(), kStorage);
    EXPECT_EQ(after(1s), kBattery);
}

TEST_F(SamplerAlertsTest, ATickGoesByWhatIsPublishedAndNotByWhatIsOnItsWay) {
    machine_.advance(1min);
    opened();
    machine_.dispatch.mainLoopQueue().hold();
    setBattery(true, 5);
    EXPECT_EQ(after(10s), kNothing);
    machine_.dispatch.mainLoopQueue().letGo();
    EXPECT_EQ(after(0s), kNothing);
    EXPECT_EQ(after(1s), kBattery);
}

TEST_F(SamplerAlertsTest, ALastingLoadIsToldAfterItsDebouncingAndThreeMinutes) {
    machine_.advance(1min);
    opened();
    machine_.hostPort.processors.setLoad(100);
    machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(4);
    // Seen after 1 s, critical after 6, examined for the first time after 7.
    EXPECT_EQ(after(186s), kNothing);
    EXPECT_EQ(after(1s), std::string(kCPU) + ", " + kMemory);
    EXPECT_EQ(after(1h), kNothing);
    // A dip shorter than ten seconds does not end the stretch, a longer one does.
    machine_.hostPort.processors.setLoad(0);
    after(9s);
    machine_.hostPort.processors.setLoad(100);
    EXPECT_EQ(after(10min), kNothing);
    machine_.hostPort.processors.setLoad(0);
    after(11s);
    machine_.hostPort.processors.setLoad(100);
    EXPECT_EQ(after(186s), kNothing);
    EXPECT_EQ(after(1s), kCPU);
}

TEST_F(SamplerAlertsTest, AStretchSeenAtTheClosingGoesOnWhileNobodyLooks) {
    machine_.advance(1min);
    opened();
    machine_.hostPort.processors.setLoad(100);
    machine_.advance(10s);
    sampler_->setUIVisible(false);
    EXPECT_EQ(after(1h), kNothing);
    EXPECT_EQ(opened(), kCPU);
}

TEST_F(SamplerAlertsTest, TwoDaysWithALooseChargerAndAFullDisk) {
    const auto halfAnHour = [this] {
        machine_.suspend(29min);
        return after(1min);
    };
    setFree(5);
    opened();  // at once: what is found in the first seconds is held back, for a day
    for (int hour = 1; hour <= 49; ++hour) {
        setBattery(false, 10);
        EXPECT_EQ(halfAnHour(), kNothing) << hour;
        setBattery(true, 10);
        EXPECT_EQ(halfAnHour(), hour % 24 == 0 ? std::string(kBattery) + ", " + kStorage : kBattery) << hour;
    }
}

}  // namespace
}  // namespace norvane
