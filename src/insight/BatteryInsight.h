#pragma once

#include <string_view>

#include "preferences/InsightVerbosity.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// What battery and power are doing and what that means. The snapshot is null before the first;
// `isLowPowerModeEnabled` is the machine's flag at this moment.
std::string_view batteryInsightText(const SystemSnapshot* snapshot, bool isLowPowerModeEnabled,
                                    InsightVerbosity verbosity);

}  // namespace norvane
