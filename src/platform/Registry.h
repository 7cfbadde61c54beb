#pragma once

#include <optional>
#include <vector>

#include "platform/RegistryEntry.h"
#include "platform/RegistryService.h"
#include "platform/TickToken.h"

namespace norvane {

// The machine's devices and what they tell about themselves. Asked from the sampler's queue only. The calls
// return soon and never throw.
//
// The properties, by service:
//   IOBlockStorageDriver  "Statistics", a dictionary: "Bytes (Read)", "Bytes (Write)", bytes since the start.
//   IOAccelerator         "PerformanceStatistics", a dictionary: "Device Utilization %", a whole number.
//   AppleSmartBattery     "DesignCapacity", "AppleRawMaxCapacity", "AppleRawCurrentCapacity" in mAh;
//                         "CurrentCapacity", "MaxCapacity", whose ratio is the charge; "CycleCount";
//                         "Temperature" in hundredths of a degree Celsius; "ExternalConnected", "IsCharging".
class Registry {
 public:
    virtual ~Registry() = default;

    // The services of this kind, in the machine's order; empty where it has none. No value means that the
    // match failed.
    virtual std::optional<std::vector<RegistryEntry>> IOServiceGetMatchingServices(RegistryService service,
                                                                                   TickToken tick) = 0;
};

}  // namespace norvane
