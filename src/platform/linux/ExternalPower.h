#pragma once

#include <optional>
#include <vector>

#include "platform/linux/Battery.h"

namespace norvane {

// An adapter, or a port that the machine can be powered through.
struct ExternalSupply {
    bool isMains = false;
    // It powers the machine now.
    bool isOnline = false;
};

// Whether the machine has external power; none where nothing tells. What the supplies say counts more than
// what the batteries do: firmware may discharge a battery on purpose while the adapter is in.
std::optional<bool> isExternalPowerConnected(const std::vector<ExternalSupply>& supplies,
                                             const std::vector<Battery>& batteries);

}  // namespace norvane
