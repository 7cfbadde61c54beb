#pragma once

#include <functional>
#include <memory>

#include "platform/Platform.h"
#include "preferences/PreferencesStore.h"
#include "shell/StatusBarController.h"

namespace norvane {

// What the application does when it has been launched, and when the user turns to it. Main thread only.
class AppDelegate {
 public:
    // What it is given outlives the delegate.
    AppDelegate(const Platform& platform, PreferencesStore& preferences,
                std::function<const CPUHardwareInfo&()> hardware)
        : platform_(platform), preferences_(preferences), hardware_(std::move(hardware)) {}

    void applicationDidFinishLaunching();
    // Only the first one does anything.
    void applicationDidBecomeActive();

    // Null before the launch.
    StatusBarController* statusBarController() const { return statusBarController_.get(); }

 private:
    Platform platform_;
    PreferencesStore& preferences_;
    std::function<const CPUHardwareInfo&()> hardware_;
    std::shared_ptr<StatusBarController> statusBarController_;
    bool didShowWelcome_ = false;
    Cancellation activations_;
};

}  // namespace norvane
