#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "platform/linux/BatteryTimes.h"
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
        // Whether the machine has any supply of its own, as most desktops have not.
        bool hasSupplies = false;
        std::optional<MonotonicInstant> readAt;
    };

    // How often a machine without supplies is looked at again. A little less than the minute after which a
    // machine at rest is asked, which else would just miss it every other time.
    static constexpr std::chrono::seconds kLookAgain{55};

    Batteries(RootFolder root, std::function<MonotonicInstant()> now);

    // Lists the supplies anew each time: batteries come and go.
    Answer read();

    // Whether reading again may give another answer; a machine without supplies is not woken up for them.
    static bool isDue(const Answer& newest, MonotonicInstant now);

 private:
    RootFolder root_;
    std::function<MonotonicInstant()> now_;
    BatteryTimes times_;
};

}  // namespace norvane
