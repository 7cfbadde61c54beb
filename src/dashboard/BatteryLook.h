#pragma once

#include <optional>
#include <string>

#include "preferences/TemperatureUnit.h"
#include "telemetry/SystemSnapshot.h"
#include "views/Paint.h"

namespace norvane {

// What the battery's panel makes of a snapshot, which is null before the first. Low Power Mode is the
// machine's of this moment; its yellow goes before all other colours.

// Full charge over design, 0 to 1; all of it where the design is not known and a full charge is.
double batteryHealthRatio(const SystemSnapshot* snapshot);
// "76.0%", or a dash where the full charge is not known.
std::string formatBatteryHealth(const SystemSnapshot* snapshot);
// Green down to 80 percent, orange down to 70, then red; dimmed where the full charge is not known.
Paint batteryHealthColor(const SystemSnapshot* snapshot);

std::string powerSourceName(const SystemSnapshot* snapshot);
// Of a symbol: mains go before Low Power Mode, and that before the machine's own picture.
std::string powerIconName(const SystemSnapshot* snapshot, bool isLowPowerModeEnabled);
// As the texts' where there is none.
std::optional<Paint> powerIconColor(const SystemSnapshot* snapshot, bool isLowPowerModeEnabled);

Ink batteryLevelColor(const SystemSnapshot* snapshot, bool isLowPowerModeEnabled);
// 0 to 1.
double batteryLevelProgress(const SystemSnapshot* snapshot);

// By degrees Celsius; what is no number is absent.
Ink batteryTemperatureColor(std::optional<double> temperature);
// 0 at 25 degrees and below, 1 at 50 and above.
double batteryTemperatureProgress(std::optional<double> temperature);
// "36°C", "98°F": cut, not rounded. A dash where it is absent.
std::string formatBatteryTemperature(std::optional<double> temperature, TemperatureUnit unit);

}  // namespace norvane
