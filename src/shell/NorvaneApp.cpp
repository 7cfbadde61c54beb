#include "shell/NorvaneApp.h"

#include <chrono>

namespace norvane {

NorvaneApp::NorvaneApp(const Platform& platform)
    : platform_(platform), preferences_(platform.userDefaults), delegate_(platform_, preferences_) {}

void NorvaneApp::launch() {
    delegate_.applicationDidFinishLaunching();
    // Well after the first paint and the first tick.
    warmUp_ =
        platform_.dispatch.mainQueue().after(std::chrono::milliseconds(500), [this] { cpuHardwareInfo(); });
}

const CPUHardwareInfo& NorvaneApp::cpuHardwareInfo() {
    if (!cpuHardwareInfo_) cpuHardwareInfo_.emplace(platform_.sysctl);
    return *cpuHardwareInfo_;
}

}  // namespace norvane
