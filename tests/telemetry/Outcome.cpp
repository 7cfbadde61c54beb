#include "telemetry/Outcome.h"

#include <cmath>
#include <tuple>
#include <type_traits>
#include <utility>

namespace norvane {
namespace {

#define NORVANE_FIELD(field) std::pair(#field, &SystemSnapshot::field)
const auto kFields = std::make_tuple(
    NORVANE_FIELD(isAppleSilicon), NORVANE_FIELD(timestamp), NORVANE_FIELD(cpuState),
    NORVANE_FIELD(memoryState), NORVANE_FIELD(cpuUsagePercent), NORVANE_FIELD(cpuSustained),
    NORVANE_FIELD(performanceCoreUsage), NORVANE_FIELD(efficiencyCoreUsage),
    NORVANE_FIELD(efficiencyCoreUsages), NORVANE_FIELD(performanceCoreUsages), NORVANE_FIELD(idlePercent),
    NORVANE_FIELD(uptime), NORVANE_FIELD(gpuUsage), NORVANE_FIELD(usedMemoryGB), NORVANE_FIELD(totalMemoryGB),
    NORVANE_FIELD(wiredMemoryGB), NORVANE_FIELD(compressedMemoryGB), NORVANE_FIELD(appMemoryGB),
    NORVANE_FIELD(swapUsedGB), NORVANE_FIELD(memoryPressure), NORVANE_FIELD(cachedFilesGB),
    NORVANE_FIELD(swapReadMBps), NORVANE_FIELD(swapWriteMBps), NORVANE_FIELD(usedDiskGB),
    NORVANE_FIELD(totalDiskGB), NORVANE_FIELD(diskReadMBps), NORVANE_FIELD(diskWriteMBps),
    NORVANE_FIELD(volumes), NORVANE_FIELD(isOnBattery), NORVANE_FIELD(thermalLevel),
    NORVANE_FIELD(energyImpact), NORVANE_FIELD(batteryCycleCount), NORVANE_FIELD(batteryDesignCapacitymAh),
    NORVANE_FIELD(batteryMaxCapacitymAh), NORVANE_FIELD(batteryCurrentCapacitymAh),
    NORVANE_FIELD(batteryHealthCondition), NORVANE_FIELD(batteryTemperatureC),
    NORVANE_FIELD(batteryPercentage), NORVANE_FIELD(batteryTimeRemaining), NORVANE_FIELD(deviceModelName),
    NORVANE_FIELD(deviceModelIcon), NORVANE_FIELD(isCharging), NORVANE_FIELD(hasBattery),
    NORVANE_FIELD(isCPUModerateLoad), NORVANE_FIELD(isGPUSaturated), NORVANE_FIELD(isGPUHigh),
    NORVANE_FIELD(isGPUActive), NORVANE_FIELD(isPCoreSaturated), NORVANE_FIELD(isPCoreActive),
    NORVANE_FIELD(isSystemIdle), NORVANE_FIELD(isAppleSiliconOptimized), NORVANE_FIELD(isMemoryThrashing),
    NORVANE_FIELD(isMemorySwapHigh), NORVANE_FIELD(isMemoryHighlyCompressed),
    NORVANE_FIELD(isMemoryCachingActive), NORVANE_FIELD(isStorageCritical), NORVANE_FIELD(isStorageLow),
    NORVANE_FIELD(isStorageFilling), NORVANE_FIELD(isStorageHeavyIO), NORVANE_FIELD(isBatteryWarm));
#undef NORVANE_FIELD

}  // namespace

std::set<std::string> differences(const Outcome& a, const Outcome& b) {
    std::set<std::string> names;
    const auto note = [&](bool differs, const std::string& name) {
        if (differs) names.insert(name);
    };
    const auto compare = [&](const auto& field) {
        const auto& value = a.snapshot.*field.second;
        note(!(value == b.snapshot.*field.second), field.first);
        if constexpr (std::is_same_v<decltype(value), const double&>)
            note(!std::isfinite(value), std::string(field.first) + " is no number");
    };
    std::apply([&](const auto&... fields) { (compare(fields), ...); }, kFields);
    note(a.systemState != b.systemState, "the published systemState");
    note(!(a.menuBarStats == b.menuBarStats), "menuBarStats");
    note(!(a.newestPoint == b.newestPoint), "cpuHistory");
    note(a.shown != b.shown, "notifications");
    note(a.printed != b.printed, "printed lines");
    // Should a field ever be missing above.
    note(names.empty() && !(a == b), "a field without a name");
    return names;
}

}  // namespace norvane
