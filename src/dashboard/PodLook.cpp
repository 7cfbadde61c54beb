#include "dashboard/PodLook.h"

#include <algorithm>

#include "dashboard/CapacityColor.h"

namespace norvane {

Ink cpuPodColor(const SystemSnapshot* snapshot) {
    return snapshot != nullptr && snapshot->cpuState == ComponentState::critical ? Ink::red : Ink::green;
}

Ink memoryPodColor(const SystemSnapshot* snapshot) {
    return snapshot != nullptr && snapshot->memoryState == ComponentState::critical ? Ink::red : Ink::purple;
}

Ink storagePodColor(const SystemSnapshot* snapshot) {
    if (snapshot == nullptr) return Ink::blue;
    const auto boot = std::find_if(snapshot->volumes.begin(), snapshot->volumes.end(),
                                   [](const DiskSnapshot& volume) { return volume.isBootVolume; });
    if (boot != snapshot->volumes.end()) {
        if (const auto color = scarceRoomColor(boot->availableForImportantUsage)) return *color;
    }
    const double ratio = capacityRatio(snapshot->usedDiskGB, snapshot->totalDiskGB);
    return capacityColor(ratio < 0 ? 0 : ratio);
}

Ink batteryPodColor(const SystemSnapshot* snapshot) {
    if (snapshot == nullptr) return Ink::teal;
    if (isThermallyLimited(snapshot->thermalLevel)) return Ink::red;
    if (!snapshot->isOnBattery) return Ink::teal;
    if (snapshot->batteryPercentage < 16) return Ink::red;
    return snapshot->energyImpact == ImpactState::high ? Ink::orange : Ink::teal;
}

}  // namespace norvane
