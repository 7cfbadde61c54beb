#pragma once

#include <string_view>

#include "telemetry/SystemSnapshot.h"

namespace norvane {

// What the pod of the energy impact shows: the name of its symbol, and its value. The snapshot is null before
// the first.
std::string_view impactPodIcon(const SystemSnapshot* snapshot);
std::string_view impactPodValue(const SystemSnapshot* snapshot);

}  // namespace norvane
