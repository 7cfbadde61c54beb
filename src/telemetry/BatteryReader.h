#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/PowerSources.h"
#include "platform/Registry.h"
#include "telemetry/CachedBattery.h"

namespace norvane {

// Reads the battery from the hardware registry and the list of power sources. Belongs to the tick; keeps
// nothing: a key that disappears takes its field with it. The battery's condition is the power source's word
// alone: a second opinion from the registry could only contradict it.
class BatteryReader {
 public:
    // What the registry knows of the hardware.
    struct RegistryReading {
        std::optional<std::int64_t> designmAh;
        std::optional<std::int64_t> maxmAh;
        std::optional<std::int64_t> currentmAh;
        std::optional<std::int64_t> cycleCount;
        std::optional<double> temperatureC;
        // True for a battery that does not say; false where there is no battery.
        bool isOnBattery = false;

        bool operator==(const RegistryReading&) const = default;
    };
    // How full it is. Without a battery as a machine on a socket shows: full and charging.
    struct PowerReading {
        std::int64_t percentage = 100;
        bool isCharging = true;
        bool hasBattery = false;
        std::optional<std::string> condition;

        bool operator==(const PowerReading&) const = default;
    };

    BatteryReader(Registry& registry, PowerSources& powerSources)
        : registry_(registry), powerSources_(powerSources) {}

    // All of it, anew.
    CachedBattery refreshBattery(TickToken tick);

    RegistryReading readBatteryRegistry(TickToken tick);
    PowerReading readBatteryPower(TickToken tick);
    // "2h 15m remaining", "Full in 45m", "Fully Charged", "Estimating…"; "—" where no power source tells.
    std::string batteryTimeRemaining(TickToken tick, bool isOnBattery, std::int64_t percentage);

 private:
    // The first one that can be used. No information is the same as no sources.
    PowerSourceDescription firstDescription(TickToken tick);

    Registry& registry_;
    PowerSources& powerSources_;
};

}  // namespace norvane
