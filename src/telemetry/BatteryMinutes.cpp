#include "telemetry/BatteryMinutes.h"

namespace norvane {

std::string formatBatteryMinutes(std::int64_t minutes) {
    const std::int64_t hours = minutes / 60;
    const std::int64_t rest = minutes % 60;
    if (minutes < 60) return std::to_string(rest) + "m";
    if (rest == 0) return std::to_string(hours) + "h";
    return std::to_string(hours) + "h " + std::to_string(rest) + "m";
}

}  // namespace norvane
