#include "telemetry/HardwareAlerts.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <utility>

#include "platform/WholeNumber.h"
#include "telemetry/BootVolume.h"
#include "telemetry/Sentences.h"

namespace norvane {
namespace {

constexpr std::chrono::seconds kLaunchGracePeriod{30};
constexpr std::chrono::seconds kSustainedLoadThreshold{180};
constexpr std::chrono::seconds kHardwareNotificationCooldown{86'400};
constexpr std::chrono::seconds kTriggerInterval{1};

// So far must free space rise above the threshold before the alert may come again.
constexpr double kStorageRearmGB = 5.0;

// Whether an alert may be given that was last given then.
bool isArmed(const std::optional<WallInstant>& last, WallInstant now) {
    return !last || now - *last >= kHardwareNotificationCooldown;
}

std::string wholeText(double number) {
    return std::to_string(wholeNumber(number));
}

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

// An error's text comes from another program and may have any form.
std::string onOneLine(std::string text) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
}

}  // namespace

HardwareAlerts::HardwareAlerts(const Platform& platform, const PreferencesStore& preferences)
    : wallClock_(platform.wallClock),
      uuidSource_(platform.uuidSource),
      userNotificationCenter_(platform.userNotificationCenter),
      standardOutput_(platform.standardOutput),
      preferences_(preferences),
      appLaunchTime_(platform.wallClock.now()) {}

void HardwareAlerts::check(const SystemSnapshot& snapshot) {
    checkSustainedLoad(snapshot.cpuState, "CPU", sentences::kProcessorPinned);
    checkSustainedLoad(snapshot.memoryState, "Memory", sentences::kMemoryPressureHigh);
    checkHardwareThresholds(snapshot);
}

// The switch does what a user expects of a switch: off, the stretch is forgotten, so that switching it on
// begins the three minutes anew.
void HardwareAlerts::checkSustainedLoad(ComponentState state, std::string_view name, std::string_view body) {
    const auto known = criticalStretches_.find(name);
    if (state != ComponentState::critical || !preferences_.sustainedLoadNotificationsEnabled()) {
        if (known != criticalStretches_.end()) criticalStretches_.erase(known);
        return;
    }
    if (known == criticalStretches_.end()) {
        criticalStretches_.emplace(name, CriticalStretch{wallClock_.now()});
        return;
    }
    CriticalStretch& stretch = known->second;
    if (stretch.hasNotified) return;
    if (wallClock_.now() - stretch.start < kSustainedLoadThreshold) return;
    deliverNotification(joined({name, sentences::kSustainedLoad}), std::string(body));
    stretch.hasNotified = true;
}

void HardwareAlerts::checkHardwareThresholds(const SystemSnapshot& snapshot) {
    const WallInstant now = wallClock_.now();
    if (preferences_.storageAlertEnabled()) checkStorage(snapshot, now);
    if (preferences_.batteryAlertEnabled()) checkBattery(snapshot, now);
}

void HardwareAlerts::checkStorage(const SystemSnapshot& snapshot, WallInstant now) {
    const DiskSnapshot* const boot = bootVolumeOf(snapshot.volumes);
    if (boot == nullptr) return;
    const double free = boot->availableForImportantUsage;
    const double threshold = preferences_.storageAlertThresholdGB();
    if (free <= threshold) {
        if (!isArmed(lastStorageNotificationDate_, now)) return;
        deliverNotification(
            std::string(sentences::kStorageWarning),
            joined({sentences::kFreeSpaceBelow, wholeText(threshold), sentences::kFreeSpaceRemaining}));
        lastStorageNotificationDate_ = now;
    } else if (threshold + kStorageRearmGB < free) {
        lastStorageNotificationDate_.reset();
    }
}

void HardwareAlerts::checkBattery(const SystemSnapshot& snapshot, WallInstant now) {
    if (!snapshot.isOnBattery) {
        lastBatteryNotificationDate_.reset();
        return;
    }
    const double threshold = preferences_.batteryAlertThresholdPct();
    if (!(threshold >= static_cast<double>(snapshot.batteryPercentage))) return;
    if (!isArmed(lastBatteryNotificationDate_, now)) return;
    deliverNotification(std::string(sentences::kBatteryWarning),
                        joined({sentences::kBatteryBelow, wholeText(threshold), sentences::kBatteryPercent}));
    lastBatteryNotificationDate_ = now;
}

// What is held back at the start counts as told to whoever asked for it.
void HardwareAlerts::deliverNotification(std::string title, std::string body) {
    if (!(wallClock_.now() - appLaunchTime_ > kLaunchGracePeriod)) return;
    userNotificationCenter_.add(
        {.identifier = uuidString(uuidSource_.next()),
         .content = {.title = std::move(title),
                     .body = std::move(body),
                     .sound = NotificationSound::defaultSound},
         .timeInterval = kTriggerInterval},
        [&output = standardOutput_](std::optional<std::string> error) {
            if (error) output.printLine("Norvane: Failed to deliver notification - " + onOneLine(*error));
        });
}

}  // namespace norvane
