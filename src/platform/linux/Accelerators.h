#pragma once

#include <vector>

#include "platform/linux/RootFolder.h"
#include "platform/linux/SystemCalls.h"
#include "platform/RegistryEntry.h"

namespace norvane {

// The machine's graphics processors and how busy they are. Reading may wait for a device or a driver's
// library, so this belongs on a lane.
class Accelerators {
 public:
    Accelerators(RootFolder root, SystemCalls calls);

    // A service for each device.
    std::vector<RegistryEntry> read();

 private:
    RootFolder root_;
    SystemCalls calls_;
};

}  // namespace norvane
