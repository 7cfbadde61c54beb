#pragma once

#include <optional>

#include "dashboard/PreferencesView.h"
#include "platform/Platform.h"
#include "preferences/PreferencesStore.h"
#include "shell/AppDelegate.h"
#include "shell/Popover.h"
#include "telemetry/CPUHardwareInfo.h"

namespace norvane {

// The whole application on a platform: what there is one of lives here and is handed on. Main thread only;
// ends by being destroyed, which stops everything that it has running.
class NorvaneApp {
 public:
    // The platform outlives the application.
    explicit NorvaneApp(const Platform& platform);
    NorvaneApp(const NorvaneApp&) = delete;
    NorvaneApp& operator=(const NorvaneApp&) = delete;

    // Comes up: the status item stands when this returns, the rest follows from the main queue.
    void launch();

    // The settings by themselves, without the dashboard's way to them; nothing without a status item's
    // button.
    void showSettings();

    AppDelegate& delegate() { return delegate_; }
    PreferencesStore& preferences() { return preferences_; }
    // What the processor is; asked of the machine soon after the launch, so that no click waits for it.
    const CPUHardwareInfo& cpuHardwareInfo();

 private:
    Platform platform_;
    PreferencesStore preferences_;
    std::optional<CPUHardwareInfo> cpuHardwareInfo_;
    AppDelegate delegate_;
    // Built when it is first asked for, the view before the popover that shows it.
    std::optional<PreferencesView> settingsView_;
    std::optional<Popover> settings_;
    Cancellation warmUp_;
    Cancellation reopening_;
};

}  // namespace norvane
