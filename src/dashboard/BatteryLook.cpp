#include "dashboard/BatteryLook.h"

#include <algorithm>
#include <cmath>

#include "platform/Decimal.h"

namespace norvane {
namespace {

constexpr const char* kUnknown = "—";

bool isOnMains(const SystemSnapshot* snapshot) {
    return snapshot != nullptr && !snapshot->isOnBattery;
}

// In milliampere hours; 0 where it is not known.
std::int64_t fullCharge(const SystemSnapshot* snapshot) {
    return snapshot != nullptr ? snapshot->batteryMaxCapacitymAh.value_or(0) : 0;
}

}  // namespace

double batteryHealthRatio(const SystemSnapshot* snapshot) {
    const std::int64_t max = fullCharge(snapshot);
    const std::int64_t design = snapshot != nullptr ? snapshot->batteryDesignCapacitymAh.value_or(0) : 0;
    if (design > 1) return std::clamp(static_cast<double>(max) / static_cast<double>(design), 0.0, 1.0);
    return max < 1 ? 0 : 1;
}

std::string formatBatteryHealth(const SystemSnapshot* snapshot) {
    if (fullCharge(snapshot) <= 0) return kUnknown;
    return decimal(batteryHealthRatio(snapshot) * 100, 1) + "%";
}

Paint batteryHealthColor(const SystemSnapshot* snapshot) {
    if (fullCharge(snapshot) <= 0) return Paint(Ink::primary).withOpacity(0.2);
    const double ratio = batteryHealthRatio(snapshot);
    if (ratio >= 0.8) return Ink::green;
    return ratio >= 0.7 ? Ink::orange : Ink::red;
}

std::string powerSourceName(const SystemSnapshot* snapshot) {
    return isOnMains(snapshot) ? "Power Adapter" : "Battery";
}

std::string powerIconName(const SystemSnapshot* snapshot, bool isLowPowerModeEnabled) {
    if (isOnMains(snapshot)) return "bolt.fill";
    if (isLowPowerModeEnabled) return "leaf.fill";
    return snapshot != nullptr ? snapshot->deviceModelIcon : "laptopcomputer";
}

std::optional<Paint> powerIconColor(const SystemSnapshot* snapshot, bool isLowPowerModeEnabled) {
    if (isLowPowerModeEnabled) return Ink::yellow;
    return isOnMains(snapshot) ? std::optional<Paint>(Ink::green) : std::nullopt;
}

Ink batteryLevelColor(const SystemSnapshot* snapshot, bool isLowPowerModeEnabled) {
    if (isLowPowerModeEnabled) return Ink::yellow;
    if (isOnMains(snapshot)) return Ink::green;
    const std::int64_t percentage = snapshot != nullptr ? snapshot->batteryPercentage : 0;
    if (percentage > 20) return Ink::teal;
    return percentage > 10 ? Ink::orange : Ink::red;
}

double batteryLevelProgress(const SystemSnapshot* snapshot) {
    if (snapshot == nullptr) return 0;
    return std::clamp(static_cast<double>(snapshot->batteryPercentage) / 100, 0.0, 1.0);
}

Ink batteryTemperatureColor(std::optional<double> temperature) {
    if (!temperature || !(*temperature >= 37)) return Ink::green;
    if (*temperature < 42) return Ink::yellow;
    return *temperature < 47 ? Ink::orange : Ink::red;
}

double batteryTemperatureProgress(std::optional<double> temperature) {
    if (!temperature || std::isnan(*temperature)) return 0;
    return std::clamp((*temperature - 25) / 25, 0.0, 1.0);
}

std::string formatBatteryTemperature(std::optional<double> temperature, TemperatureUnit unit) {
    if (!temperature || !std::isfinite(*temperature)) return kUnknown;
    const bool isCelsius = unit == TemperatureUnit::celsius;
    const double degrees = isCelsius ? *temperature : *temperature * 9 / 5 + 32;
    // Half a degree of frost is 0, not -0.
    return decimal(std::trunc(degrees) + 0.0, 0) + (isCelsius ? "°C" : "°F");
}

}  // namespace norvane
