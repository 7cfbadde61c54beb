#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Platform.h"
#include "platform/WallInstant.h"
#include "preferences/PreferencesStore.h"
#include "telemetry/ComponentState.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// Speaks up on its own in three situations: a component critical for three minutes without a break, free
// space down to the user's threshold, the battery down to the user's threshold. Latches and cooldowns see to
// it that a lasting condition is told once. Nothing of it outlives the process. Belongs to the tick.
class HardwareAlerts {
 public:
    // Main thread. Platform and preferences outlive this, and what it has handed to the platform.
    HardwareAlerts(const Platform& platform, const PreferencesStore& preferences);

    // On every full tick, with the snapshot that was published before it.
    void check(const SystemSnapshot& snapshot);

 private:
    // While the component is not critical, or the user does not want to hear of it, there is no stretch.
    struct CriticalStretch {
        WallInstant start;
        bool hasNotified = false;
    };

    void checkSustainedLoad(ComponentState state, std::string_view name, std::string_view body);
    void checkHardwareThresholds(const SystemSnapshot& snapshot);
    void checkStorage(const SystemSnapshot& snapshot, WallInstant now);
    void checkBattery(const SystemSnapshot& snapshot, WallInstant now);
    void deliverNotification(std::string title, std::string body);

    const WallClock& wallClock_;
    UUIDSource& uuidSource_;
    UserNotificationCenter& userNotificationCenter_;
    StandardOutput& standardOutput_;
    const PreferencesStore& preferences_;
    const WallInstant appLaunchTime_;

    std::map<std::string, CriticalStretch, std::less<>> criticalStretches_;
    // None: armed.
    std::optional<WallInstant> lastStorageNotificationDate_;
    std::optional<WallInstant> lastBatteryNotificationDate_;
};

}  // namespace norvane
