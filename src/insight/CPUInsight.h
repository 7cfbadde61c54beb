#pragma once

#include <string_view>

#include "preferences/InsightVerbosity.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// What the processor is doing and what that means. The snapshot is null before the first.
std::string_view cpuInsightText(const SystemSnapshot* snapshot, InsightVerbosity verbosity);

}  // namespace norvane
