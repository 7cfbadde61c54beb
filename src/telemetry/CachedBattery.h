#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace norvane {

// The last battery reading, held between reads because they are slow. It begins as it stands before the first
// read. What the hardware does not tell is absent.
struct CachedBattery {
    std::optional<std::int64_t> designmAh;
    std::optional<std::int64_t> maxmAh;
    std::optional<std::int64_t> currentmAh;
    std::optional<std::int64_t> cycleCount;
    std::optional<double> temperatureC;
    std::optional<std::string> condition;
    bool isOnBattery = true;
    // Percent, as read: not clamped.
    std::int64_t percentage = 100;
    std::string timeRemaining = "Estimating...";
    bool isCharging = false;
    bool hasBattery = true;

    bool operator==(const CachedBattery&) const = default;
};

}  // namespace norvane
