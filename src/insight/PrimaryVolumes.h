#pragma once

#include <span>
#include <vector>

#include "telemetry/BootVolume.h"

namespace norvane {

// What is shown as the machine's own storage: the first volume that the system was booted from alone, or all
// of them where there is none. Valid as long as `volumes`.
inline std::span<const DiskSnapshot> primaryVolumes(const std::vector<DiskSnapshot>& volumes) {
    if (const DiskSnapshot* const boot = bootVolumeOf(volumes)) return {boot, 1};
    return volumes;
}

}  // namespace norvane
