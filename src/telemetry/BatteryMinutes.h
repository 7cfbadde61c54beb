#pragma once

#include <cstdint>
#include <string>

namespace norvane {

// "45m", "2h", "2h 15m".
std::string formatBatteryMinutes(std::int64_t minutes);

}  // namespace norvane
