#include "platform/linux/BatteryHealth.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace norvane {

namespace {

// Not those that pass: "Overheat", "Cold" and the like.
constexpr std::array<std::string_view, 9> kDamages{
    "Dead",
    "Unspecified failure",
    "Over voltage",
    "Over current",
    "Calibration required",
    "Watchdog timer expire",
    "Safety timer expire",
    "Cell imbalance",
    "Blown fuse",
};

bool isWornOut(const Battery& battery) {
    for (const Battery::Figures& figures : {battery.charges(), battery.energies()}) {
        if (figures.full && figures.fullDesign) return *figures.full / *figures.fullDesign < 0.50;
    }
    return false;
}

bool isHealthy(const Battery& battery) {
    return std::find(kDamages.begin(), kDamages.end(), battery.health) == kDamages.end() &&
           !isWornOut(battery);
}

}  // namespace

const char* batteryHealthCondition(const std::vector<Battery>& batteries) {
    return std::all_of(batteries.begin(), batteries.end(), isHealthy) ? "Normal" : "Service Recommended";
}

}  // namespace norvane
