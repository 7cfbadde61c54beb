#include "platform/linux/ExternalPower.h"

#include <algorithm>

namespace norvane {

std::optional<bool> isExternalPowerConnected(const std::vector<ExternalSupply>& supplies,
                                             const std::vector<Battery>& batteries) {
    const auto anySupply = [&](bool ExternalSupply::*property) {
        return std::any_of(supplies.begin(), supplies.end(),
                           [&](const auto& supply) { return supply.*property; });
    };
    if (anySupply(&ExternalSupply::isOnline)) return true;
    if (anySupply(&ExternalSupply::isMains)) return false;

    // Machines charged by USB-C whose charger is not reported at all.
    const auto anyBattery = [&](auto matches) {
        return std::any_of(batteries.begin(), batteries.end(),
                           [&](const Battery& battery) { return matches(battery.status); });
    };
    if (anyBattery([](const std::string& status) {
            return status == "Charging" || status == "Full" || status == "Not charging";
        })) {
        return true;
    }
    if (anyBattery([](const std::string& status) { return status == "Discharging"; })) return false;
    return std::nullopt;
}

}  // namespace norvane
