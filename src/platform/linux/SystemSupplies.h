#pragma once

#include <vector>

#include "platform/linux/Battery.h"
#include "platform/linux/ExternalPower.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

// What the machine itself is powered by. The batteries of mice, headsets and the like are not among it, nor
// is an uninterruptible power supply.
struct SystemSupplies {
    std::vector<Battery> batteries;
    std::vector<ExternalSupply> externals;
    // Whether there is anything of the machine's own, be it an empty bay, that may tell something else next
    // time.
    bool areThereAny = false;
};

// Reading may ask an embedded controller and take seconds. Devices of other kinds are left in peace.
SystemSupplies readSystemSupplies(const RootFolder& root);

}  // namespace norvane
