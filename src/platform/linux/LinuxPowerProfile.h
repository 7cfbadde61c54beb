#pragma once

#include <atomic>
#include <string>

#include "platform/linux/RootFolder.h"
#include "platform/MainQueue.h"

namespace norvane {

// Follows the power profile that the user has chosen and keeps one flag up to date with it, so that drawing
// code can ask at every evaluation.
class LinuxPowerProfile {
 public:
    // Main thread, the one that runs GLib's default main context. The address is D-Bus' own kind; an empty
    // one stands for no bus. The flag outlives this.
    LinuxPowerProfile(MainQueue& mainQueue, std::string busAddress, RootFolder root,
                      std::atomic<bool>& isLowPower);

 private:
    MainQueue& mainQueue_;
    std::string busAddress_;
    RootFolder root_;
    std::atomic<bool>& isLowPower_;
};

}  // namespace norvane
