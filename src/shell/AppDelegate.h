#pragma once

#include <memory>

#include "platform/Platform.h"
#include "preferences/PreferencesStore.h"
#include "shell/StatusBarController.h"

namespace norvane {

// What the application does when it has been launched. Main thread only.
class AppDelegate {
 public:
    // Platform and preferences outlive the delegate.
    AppDelegate(const Platform& platform, const PreferencesStore& preferences)
        : platform_(platform), preferences_(preferences) {}

    void applicationDidFinishLaunching();

    // Null before the launch.
    StatusBarController* statusBarController() const { return statusBarController_.get(); }

 private:
    Platform platform_;
    const PreferencesStore& preferences_;
    std::shared_ptr<StatusBarController> statusBarController_;
};

}  // namespace norvane
