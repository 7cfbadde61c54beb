#include "platform/linux/LinuxPowerProfile.h"

#include <utility>

namespace norvane {

LinuxPowerProfile::LinuxPowerProfile(MainQueue& mainQueue, std::string busAddress, RootFolder root,
                                     std::atomic<bool>& isLowPower)
    : mainQueue_(mainQueue),
      busAddress_(std::move(busAddress)),
      root_(std::move(root)),
      isLowPower_(isLowPower) {}

}  // namespace norvane
