#include "shell/NorvaneApp.h"

#include <chrono>

#include "shell/ScreenClamp.h"

namespace norvane {

NorvaneApp::NorvaneApp(const Platform& platform)
    : platform_(platform),
      preferences_(platform.userDefaults),
      delegate_(platform_, preferences_, [this]() -> const CPUHardwareInfo& { return cpuHardwareInfo(); }) {}

void NorvaneApp::launch() {
    delegate_.applicationDidFinishLaunching();
    StatusBarController* const controller = delegate_.statusBarController();
    const auto open = [this, controller] {
        if (settings_) settings_->performClose();
        controller->showDashboard();
    };
    controller->setContextMenu({{"Open", open},
                                {"Settings", [this] { showSettings(); }},
                                {"Quit", [this] { platform_.application.terminate(); }}});
    reopening_ = platform_.application.onReopen(open);
    // Well after the first paint and the first tick.
    warmUp_ =
        platform_.dispatch.mainQueue().after(std::chrono::milliseconds(500), [this] { cpuHardwareInfo(); });
}

void NorvaneApp::showSettings() {
    const StatusBarController* const controller = delegate_.statusBarController();
    const auto button = controller != nullptr ? controller->buttonFrame() : std::nullopt;
    if (!button) return;
    if (!settings_) {
        settingsView_.emplace(platform_, preferences_);
        settings_.emplace(platform_.windowServer, platform_.dispatch.mainQueue(), settingsView_->content());
        settings_->setBehavior(PopoverBehavior::semitransient);
    }
    platform_.application.activateIgnoringOtherApps();
    settings_->showBelow(*button);
    PopoverWindow& window = *settings_->window();
    window.makeKeyWindow();
    if (const auto free = window.visibleFrame()) window.setFrame(clampedToScreen(window.frame(), *free));
}

const CPUHardwareInfo& NorvaneApp::cpuHardwareInfo() {
    if (!cpuHardwareInfo_) cpuHardwareInfo_.emplace(platform_.sysctl);
    return *cpuHardwareInfo_;
}

}  // namespace norvane
