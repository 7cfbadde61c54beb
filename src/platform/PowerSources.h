#pragma once

#include <optional>
#include <vector>

#include "platform/PropertyDictionary.h"
#include "platform/TickToken.h"

namespace norvane {

// A power source's description: "Is Charged" (Boolean), "Time to Empty" and "Time to Full Charge" (whole
// minutes, -1 while they are estimated), "BatteryHealthCondition" (text, "Normal" when healthy). No value
// means that the source has none that can be used.
using PowerSourceDescription = std::optional<PropertyDictionary>;

// What the system says about the machine's power. Asked from the sampler's queue only. The calls return soon
// and never throw.
class PowerSources {
 public:
    virtual ~PowerSources() = default;

    // The sources, in the system's order, each with its description; empty where there are none. No value
    // means that the system gave no information or no list.
    virtual std::optional<std::vector<PowerSourceDescription>> IOPSCopyPowerSourcesInfo(TickToken tick) = 0;
};

}  // namespace norvane
