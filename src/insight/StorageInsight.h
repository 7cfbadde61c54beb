#pragma once

#include <string_view>
#include <vector>

#include "preferences/InsightVerbosity.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// What the storage is doing and what that means, by the flags of the snapshot, which is null before the
// first, and by the volumes and rates (MB/s) that the panel shows beside it.
std::string_view storageInsightText(const SystemSnapshot* snapshot, const std::vector<DiskSnapshot>& volumes,
                                    double readMBps, double writeMBps, InsightVerbosity verbosity);

}  // namespace norvane
