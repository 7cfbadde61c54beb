#include "insight/SystemStatusText.h"

#include "telemetry/MemoryPressure.h"
#include "telemetry/Sentences.h"

namespace norvane {

std::string_view systemStatusText(const SystemSnapshot* snapshot, ComponentState systemState,
                                  bool isLowPowerModeEnabled) {
    // A fixed verdict, whatever threshold the user has set for alerts.
    constexpr std::int64_t kBatteryLowBelow = 16;

    if (snapshot == nullptr) return sentences::kInitializing;
    const SystemSnapshot& now = *snapshot;
    const bool isCritical = systemState == ComponentState::critical;

    if (now.thermalLevel == ThermalLevel::serious) return sentences::kTemperatureElevated;
    if (now.thermalLevel == ThermalLevel::critical) return sentences::kThermalLimit;
    if (now.isOnBattery && now.batteryPercentage < kBatteryLowBelow) return sentences::kBatteryLow;
    if (now.memoryPressure >= kCriticalMemoryPressure) return sentences::kMemoryExhausted;
    // Heat and memory have been answered: what is left of a critical system is the processor.
    if (isCritical && now.isGPUSaturated) return sentences::kComputeAndGraphicsSaturated;
    if (isCritical) return sentences::kProcessorSaturated;
    if (isLowPowerModeEnabled) return sentences::kLowPowerMode;
    return sentences::kOptimal;
}

}  // namespace norvane
