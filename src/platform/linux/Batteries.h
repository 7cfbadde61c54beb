#pragma once

#include <functional>
#include <vector>

#include "platform/linux/RootFolder.h"
#include "platform/MonotonicInstant.h"
#include "platform/PowerSources.h"
#include "platform/RegistryEntry.h"

namespace norvane {

// The batteries that the machine runs on, from its power supplies. Reading may ask an embedded controller and
// take seconds, so this belongs on a lane.
class Batteries {
 public:
    struct Answer {
        // One service for all batteries together; none where there is no battery.
        std::vector<RegistryEntry> services;
        // Likewise one source.
        std::vector<PowerSourceDescription> sources;
    };

    Batteries(RootFolder root, std::function<MonotonicInstant()> now);

    Answer read();

 private:
    RootFolder root_;
    std::function<MonotonicInstant()> now_;
};

}  // namespace norvane
