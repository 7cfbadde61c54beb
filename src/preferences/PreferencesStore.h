#pragma once

#include <functional>

#include "platform/UserDefaults.h"
#include "preferences/InsightVerbosity.h"
#include "preferences/MenuBarIconMode.h"
#include "preferences/TemperatureUnit.h"

namespace norvane {

// The user's choices: a thin front on the defaults store. Nothing is kept in the program: each read asks the
// store and gives the default where the key is missing or holds nothing of that type; each write stores at
// once and tells the observers. Any thread may read; writing and observing belong to the main thread.
class PreferencesStore {
 public:
    // Also carries over what an earlier version stored. The defaults outlive the store.
    explicit PreferencesStore(UserDefaults& defaults);

    TemperatureUnit temperatureUnit() const;
    void setTemperatureUnit(TemperatureUnit unit);

    MenuBarIconMode menuBarIconMode() const;
    void setMenuBarIconMode(MenuBarIconMode mode);

    bool isSmartAutoExpandEnabled() const;
    void setIsSmartAutoExpandEnabled(bool enabled);

    InsightVerbosity insightVerbosity() const;
    void setInsightVerbosity(InsightVerbosity verbosity);

    bool sustainedLoadNotificationsEnabled() const;
    void setSustainedLoadNotificationsEnabled(bool enabled);

    bool storageAlertEnabled() const;
    void setStorageAlertEnabled(bool enabled);

    // Decimal gigabytes, finite.
    double storageAlertThresholdGB() const;
    void setStorageAlertThresholdGB(double gigabytes);

    bool batteryAlertEnabled() const;
    void setBatteryAlertEnabled(bool enabled);

    // Percent, finite.
    double batteryAlertThresholdPct() const;
    void setBatteryAlertThresholdPct(double percent);

    // Told after any change of the store, by this program or from outside.
    [[nodiscard]] Cancellation observe(std::function<void()> observer) const;

 private:
    UserDefaults& defaults_;
};

}  // namespace norvane
