#include "telemetry/HardwareAlerts.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

const std::string kNothing;
const std::string kCPU = "CPU Sustained Load";
const std::string kMemory = "Memory Sustained Load";
const std::string kStorage = "Storage Warning";
const std::string kBattery = "Battery Warning";

// Stories and soak tell when alerts come and that they come once. Here is what no story lasts long enough
// for.
class HardwareAlertsTest : public testing::Test {
 protected:
    HardwareAlertsTest() {
        preferences_.setSustainedLoadNotificationsEnabled(true);
        setThresholdAlerts(true);
        setFree(500);
    }
    void setThresholdAlerts(bool areEnabled) {
        preferences_.setStorageAlertEnabled(areEnabled);
        preferences_.setBatteryAlertEnabled(areEnabled);
    }
    void setFree(double freeGB) {
        const auto volume = [](bool isBootVolume, double free) {
            return DiskSnapshot{{}, {}, 0, 0, false, isBootVolume, free};
        };
        snapshot_.volumes = {volume(false, 1), volume(true, freeGB), volume(true, 1)};
    }
    // Looks, each so much later than the one before, and the titles that were handed in since that one.
    void expectTold(const std::vector<std::pair<std::chrono::nanoseconds, std::string>>& looks) {
        for (std::size_t i = 0; i < looks.size(); ++i) {
            machine_.advance(looks[i].first);
            alerts_->check(snapshot_);
            std::string titles;
            for (const auto& added = machine_.userNotificationCenter.added; seen_ < added.size(); ++seen_)
                titles += (titles.empty() ? "" : ", ") + added[seen_].content.title;
            EXPECT_EQ(titles, looks[i].second) << "look " << i;
        }
    }

    ScriptedMachine machine_;
    PreferencesStore preferences_{machine_.userDefaults};
    std::optional<HardwareAlerts> alerts_{std::in_place, machine_.platform(), preferences_};
    SystemSnapshot snapshot_{};
    std::size_t seen_ = 0;
};

TEST_F(HardwareAlertsTest, AStretchIsToldOnceAfterThreeMinutesAndForgottenByACalmCheckOrTheSwitch) {
    machine_.advance(31s);
    snapshot_.cpuState = ComponentState::critical;
    expectTold({{0s, kNothing}, {180s - 1ns, kNothing}, {1ns, kCPU}, {24h, kNothing}});
    snapshot_.cpuState = ComponentState::normal;
    snapshot_.memoryState = ComponentState::critical;
    expectTold({{1s, kNothing}});
    snapshot_.cpuState = ComponentState::critical;
    expectTold({{60s, kNothing}, {120s, kMemory}, {60s, kCPU}});
    preferences_.setSustainedLoadNotificationsEnabled(false);
    expectTold({{1s, kNothing}});
    preferences_.setSustainedLoadNotificationsEnabled(true);
    expectTold({{1h, kNothing}});
    preferences_.setSustainedLoadNotificationsEnabled(false);
    machine_.advance(500ms);  // between two checks it changes nothing
    preferences_.setSustainedLoadNotificationsEnabled(true);
    expectTold({{179s, kNothing}, {500ms, kCPU + ", " + kMemory}});
}

TEST_F(HardwareAlertsTest, SpaceAndBatteryAreToldOnceADayUnlessRearmedWhichTheSwitchDoesNot) {
    const auto look = [this](double freeGB, bool isOnBattery, std::chrono::nanoseconds later,
                             const std::string& want) {
        setFree(freeGB);
        snapshot_.isOnBattery = isOnBattery;
        snapshot_.batteryPercentage = 15;
        expectTold({{later, want}});
    };
    machine_.advance(31s);
    look(20, true, 1s, kStorage + ", " + kBattery);
    look(25, true, 1h, kNothing);
    look(0, true, 23h - 1ns, kNothing);
    look(0, true, 1ns, kStorage + ", " + kBattery);
    setThresholdAlerts(false);
    look(500, false, 1s, kNothing);
    look(0, true, 48h, kNothing);
    setThresholdAlerts(true);
    look(0, true, 1s, kStorage + ", " + kBattery);
    look(25.001, false, 1s, kNothing);
    look(20.001, false, 1s, kNothing);
    look(20, true, 1s, kStorage + ", " + kBattery);
}

TEST_F(HardwareAlertsTest, InTheFirstThirtySecondsAnAlertCountsAsToldAndIsNot) {
    for (const auto& [age, told] : {std::pair{30s + 0ns, kNothing}, {30s + 1ns, kStorage}}) {
        alerts_.emplace(machine_.platform(), preferences_);
        setFree(10);
        expectTold({{age, told}, {24h - 1ns, kNothing}, {1ns, kStorage}});
    }
}

TEST_F(HardwareAlertsTest, WhatIsToldStandsInWholeNumbersAndAFailureIsOneLineAndNoSecondTry) {
    preferences_.setStorageAlertThresholdGB(20.9);
    preferences_.setBatteryAlertThresholdPct(15.9);
    machine_.userNotificationCenter.error.always("first\nsecond\r\n\tthird\x7F");
    setFree(20.9);
    snapshot_.isOnBattery = true;
    snapshot_.batteryPercentage = 15;
    expectTold({{31s, kStorage + ", " + kBattery}, {1h, kNothing}});
    const auto& added = machine_.userNotificationCenter.added;
    EXPECT_EQ(added[0].content.body, "Your Mac has less than 20 GB of free space remaining.");
    EXPECT_EQ(added[1].content.body, "Battery has dropped below 15%.");
    EXPECT_EQ(added[1].content.sound, NotificationSound::defaultSound);
    EXPECT_NE(added[0].identifier, added[1].identifier);
    EXPECT_EQ(machine_.standardOutput.lines,
              std::vector<std::string>(2, "Norvane: Failed to deliver notification - first second   third "));
}

}  // namespace
}  // namespace norvane
