#pragma once

#include <array>
#include <string_view>

#include "platform/RawText.h"

namespace norvane {

// How hot the machine says that it is. Stored by the names of the cases.
enum class ThermalLevel { nominal, fair, serious, critical };

template <>
inline constexpr std::array<std::string_view, 4> kRawTexts<ThermalLevel>{"nominal", "fair", "serious",
                                                                         "critical"};

// The level for the operating system's thermal state, 0 to 3; anything else is nominal.
constexpr ThermalLevel thermalLevelOf(int thermalState) {
    if (thermalState < 0 || thermalState > 3) return ThermalLevel::nominal;
    return static_cast<ThermalLevel>(thermalState);
}

// Whether performance is limited by heat.
constexpr bool isThermallyLimited(ThermalLevel level) {
    return level == ThermalLevel::serious || level == ThermalLevel::critical;
}

}  // namespace norvane
