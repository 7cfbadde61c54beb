#include "insight/MemoryInsight.h"

#include <algorithm>

#include "insight/AtVerbosity.h"
#include "telemetry/MemoryPressure.h"
#include "telemetry/Sentences.h"

namespace norvane {
namespace {

// Fixed, and stricter than the bands of the flags.
constexpr double kMuchSwapGB = 1.0;
constexpr double kMuchCompressed = 0.4;

std::string_view memoryExplanation(const SystemSnapshot& now) {
    const std::int64_t tier = memoryPressureTier(&now);
    if (tier == kCriticalMemoryPressure) return sentences::kMemoryCritical;
    // Thrashing without much swap in use is a passing thing.
    if (now.isMemorySwapHigh && now.isMemoryThrashing) return sentences::kMemoryCritical;
    if (now.isMemorySwapHigh) return sentences::kMemoryPressureElevated;
    if (tier >= kWarningMemoryPressure) return sentences::kMemoryPressureElevated;
    if (now.isMemoryHighlyCompressed) return sentences::kMemoryHighlyUtilized;
    if (tier == kNormalMemoryPressure && now.isMemoryCachingActive) return sentences::kMemoryCaching;
    return sentences::kMemoryHealthy;
}

}  // namespace

std::int64_t memoryPressureTier(const SystemSnapshot* snapshot) {
    if (snapshot == nullptr) return kNormalMemoryPressure;
    const SystemSnapshot& now = *snapshot;
    const bool isMuchSwapped = now.swapUsedGB > kMuchSwapGB;
    const bool isMuchCompressed =
        now.totalMemoryGB > 0 && now.compressedMemoryGB / now.totalMemoryGB > kMuchCompressed;
    if (isMuchSwapped || isMuchCompressed) return std::max(now.memoryPressure, kWarningMemoryPressure);
    return now.memoryPressure;
}

std::string_view memoryInsightText(const SystemSnapshot* snapshot, InsightVerbosity verbosity) {
    if (snapshot == nullptr) return sentences::kMemoryUnavailable;
    return atVerbosity(verbosity, memoryExplanation(*snapshot));
}

}  // namespace norvane
