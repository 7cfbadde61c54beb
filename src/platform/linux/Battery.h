#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/PowerSupply.h"

namespace norvane {

// One battery that the machine runs on, as its driver tells it ("Linux power supply class"). What the driver
// does not tell has no value.
struct Battery {
    using Number = std::optional<std::int64_t>;

    // In µAh or in µWh: a battery tells one or the other, rarely both.
    struct Capacities {
        Number full;
        Number fullDesign;
        Number now;
    };
    // The same, as far as they make sense: full ones are above 0, what is left is at least 0.
    struct Figures {
        std::optional<double> full;
        std::optional<double> fullDesign;
        std::optional<double> now;
        // What is left as far as it can be told: 0 counts only if the percentage does not say otherwise.
        std::optional<double> remaining;
    };

    std::string name;
    std::string status;  // "Charging", "Discharging", "Not charging", "Full" or "Unknown"
    std::string health;
    Number capacity;  // per cent, 0 to 100
    Capacities charge;
    Capacities energy;
    Number voltageMinDesign;           // µV
    Number voltageNow;                 // µV
    Number powerNow;                   // µW, of either sign
    Number currentNow;                 // µA, of either sign
    Number temp;                       // tenths of a degree Celsius
    Number cycleCount;                 // 0 where the firmware does not count
    Number chargeControlEndThreshold;  // per cent at which charging stops; 0 or 100 where nothing stops it

    // In µAh, converted from the energies where there are no charges.
    Figures charges() const;
    // In µWh, converted from the charges where there are no energies.
    Figures energies() const;
    // In µW. Never negative, since drivers disagree about which way the sign points.
    std::optional<double> power() const;
};

Battery readBattery(const PowerSupply& supply);

}  // namespace norvane
