#pragma once

#include <cstdint>
#include <string_view>

#include "preferences/InsightVerbosity.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// The kernel's pressure level (1 normal, 2 warning, 4 critical), raised to a warning where much is swapped or
// compressed already. 1 without a snapshot.
std::int64_t memoryPressureTier(const SystemSnapshot* snapshot);

// What the memory is doing and what that means. The snapshot is null before the first.
std::string_view memoryInsightText(const SystemSnapshot* snapshot, InsightVerbosity verbosity);

}  // namespace norvane
