#include "insight/CPUInsight.h"

#include "insight/AtVerbosity.h"
#include "telemetry/Sentences.h"

namespace norvane {
namespace {

std::string_view cpuExplanation(const SystemSnapshot& now) {
    if (now.cpuState == ComponentState::critical) {
        if (now.isGPUSaturated) return sentences::kCPUAndGPUSaturated;
        if (now.isPCoreSaturated) return sentences::kPCoresSaturated;
        return sentences::kCPUSaturated;
    }
    if (now.isSystemIdle) return sentences::kCPUResting;
    if (now.isCPUModerateLoad) return sentences::kCPUModerateLoad;
    if (now.isGPUActive) return sentences::kCPUNormalWithGraphics;
    return sentences::kCPUEfficient;
}

}  // namespace

std::string_view cpuInsightText(const SystemSnapshot* snapshot, InsightVerbosity verbosity) {
    if (snapshot == nullptr) return sentences::kCPUUnavailable;
    return atVerbosity(verbosity, cpuExplanation(*snapshot));
}

}  // namespace norvane
