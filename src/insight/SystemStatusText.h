#pragma once

#include <string_view>

#include "telemetry/ComponentState.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// One sentence on how the whole machine is doing: a verdict that names the most serious thing first. The
// snapshot is null before the first; `systemState` is the sampler's, `isLowPowerModeEnabled` the machine's
// flag.
std::string_view systemStatusText(const SystemSnapshot* snapshot, ComponentState systemState,
                                  bool isLowPowerModeEnabled);

}  // namespace norvane
