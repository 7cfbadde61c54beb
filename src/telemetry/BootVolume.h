#pragma once

#include <algorithm>
#include <vector>

#include "telemetry/DiskSnapshot.h"

namespace norvane {

// The first volume that the system was booted from; null where there is none.
inline const DiskSnapshot* bootVolumeOf(const std::vector<DiskSnapshot>& volumes) {
    const auto found = std::find_if(volumes.begin(), volumes.end(),
                                    [](const DiskSnapshot& volume) { return volume.isBootVolume; });
    return found == volumes.end() ? nullptr : &*found;
}

}  // namespace norvane
