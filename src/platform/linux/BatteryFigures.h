#pragma once

#include <optional>
#include <vector>

#include "platform/linux/Battery.h"
#include "platform/PropertyDictionary.h"

namespace norvane {

// All batteries of a machine taken together. The functions take at least one battery.

// What is left, in whole per cent, 0 to 100, cut: of one battery what its driver says, of several the share
// of their sums, so that a large one counts for more. None where nothing tells.
std::optional<int> chargePercent(const std::vector<Battery>& batteries);

// In µWh; none where there is no sum, since a battery that tells capacities does not tell this one.
std::optional<double> remainingEnergy(const std::vector<Battery>& batteries);
// What charging adds until each battery is full or as full as its owner wants it, in µWh; likewise.
std::optional<double> missingEnergy(const std::vector<Battery>& batteries);

// Whether no more charging is to be expected: each battery is full, or is held at its limit by external
// power.
bool isCharged(const std::vector<Battery>& batteries, std::optional<bool> isExternalPowerConnected);

// The properties of the registry's one service for all batteries.
PropertyDictionary batteryProperties(const std::vector<Battery>& batteries,
                                     std::optional<bool> isExternalPowerConnected);

}  // namespace norvane
