#pragma once

#include <memory>

#include "platform/Platform.h"
#include "shell/StatusBarController.h"

namespace norvane {

// What the application does when it has been launched. Main thread only.
class AppDelegate {
 public:
    // The platform outlives the delegate.
    explicit AppDelegate(const Platform& platform) : platform_(platform) {}

    void applicationDidFinishLaunching();

    // Null before the launch.
    StatusBarController* statusBarController() const { return statusBarController_.get(); }

 private:
    Platform platform_;
    std::shared_ptr<StatusBarController> statusBarController_;
};

}  // namespace norvane
