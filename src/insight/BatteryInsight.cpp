#include "insight/BatteryInsight.h"

#include "insight/AtVerbosity.h"
#include "telemetry/MemoryPressure.h"
#include "telemetry/Sentences.h"

namespace norvane {
namespace {

// Fixed, whatever threshold the user has set for alerts.
constexpr std::int64_t kFullAbove = 99;
constexpr std::int64_t kCriticallyLow = 10;
constexpr std::int64_t kLow = 20;

// Any other word of the power source asks for service.
constexpr std::string_view kHealthyCondition = "Normal";

std::string_view onHeat(const SystemSnapshot& now) {
    if (now.isPCoreSaturated || now.isGPUSaturated) return sentences::kHeatFromCompute;
    return sentences::kHeatFromElsewhere;
}

std::string_view onMains(const SystemSnapshot& now) {
    if (now.isCharging && now.isBatteryWarm) return sentences::kChargingWarm;
    if (now.isCharging) return sentences::kCharging;
    if (now.batteryPercentage > kFullAbove) return sentences::kFullyCharged;
    return sentences::kChargeOnHold;
}

std::string_view onHighImpact(const SystemSnapshot& now) {
    if (now.memoryPressure >= kWarningMemoryPressure && now.isMemorySwapHigh) {
        return sentences::kImpactFromSwap;
    }
    if (now.isGPUHigh) return sentences::kImpactFromGraphics;
    return sentences::kImpactFromWorkloads;
}

std::string_view onBattery(const SystemSnapshot& now, bool isLowPowerModeEnabled) {
    const auto& condition = now.batteryHealthCondition;
    if (condition && *condition != kHealthyCondition) return sentences::kServiceRecommended;
    if (now.batteryPercentage <= kCriticallyLow) return sentences::kBatteryCriticallyLow;
    if (now.batteryPercentage <= kLow) return sentences::kBatteryRunningLow;
    if (now.energyImpact == ImpactState::high) return onHighImpact(now);
    if (isLowPowerModeEnabled) return sentences::kLowPowerModeActive;
    if (now.isAppleSilicon && now.isAppleSiliconOptimized) return sentences::kEfficiencyCores;
    return sentences::kBatteryHealthy;
}

std::string_view batteryExplanation(const SystemSnapshot& now, bool isLowPowerModeEnabled) {
    if (isThermallyLimited(now.thermalLevel)) return onHeat(now);
    if (!now.isOnBattery) return onMains(now);
    return onBattery(now, isLowPowerModeEnabled);
}

}  // namespace

std::string_view batteryInsightText(const SystemSnapshot* snapshot, bool isLowPowerModeEnabled,
                                    InsightVerbosity verbosity) {
    if (snapshot == nullptr) return sentences::kBatteryUnavailable;
    return atVerbosity(verbosity, batteryExplanation(*snapshot, isLowPowerModeEnabled));
}

}  // namespace norvane
