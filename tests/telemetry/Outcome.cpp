#include "telemetry/Outcome.h"

namespace norvane {
namespace {

using S = SystemSnapshot;

// Calls it with the name and the member of every field.
template <typename Visit>
void forEachField(Visit visit) {
#define NORVANE_FIELD(field) visit(#field, &S::field)
    NORVANE_FIELD(isAppleSilicon);
    NORVANE_FIELD(timestamp);
    NORVANE_FIELD(cpuState);
    NORVANE_FIELD(memoryState);
    NORVANE_FIELD(cpuUsagePercent);
    NORVANE_FIELD(cpuSustained);
    NORVANE_FIELD(performanceCoreUsage);
    NORVANE_FIELD(efficiencyCoreUsage);
    NORVANE_FIELD(efficiencyCoreUsages);
    NORVANE_FIELD(performanceCoreUsages);
    NORVANE_FIELD(idlePercent);
    NORVANE_FIELD(uptime);
    NORVANE_FIELD(gpuUsage);
    NORVANE_FIELD(usedMemoryGB);
    NORVANE_FIELD(totalMemoryGB);
    NORVANE_FIELD(wiredMemoryGB);
    NORVANE_FIELD(compressedMemoryGB);
    NORVANE_FIELD(appMemoryGB);
    NORVANE_FIELD(swapUsedGB);
    NORVANE_FIELD(memoryPressure);
    NORVANE_FIELD(cachedFilesGB);
    NORVANE_FIELD(swapReadMBps);
    NORVANE_FIELD(swapWriteMBps);
    NORVANE_FIELD(usedDiskGB);
    NORVANE_FIELD(totalDiskGB);
    NORVANE_FIELD(diskReadMBps);
    NORVANE_FIELD(diskWriteMBps);
    NORVANE_FIELD(volumes);
    NORVANE_FIELD(isOnBattery);
    NORVANE_FIELD(thermalLevel);
    NORVANE_FIELD(energyImpact);
    NORVANE_FIELD(batteryCycleCount);
    NORVANE_FIELD(batteryDesignCapacitymAh);
    NORVANE_FIELD(batteryMaxCapacitymAh);
    NORVANE_FIELD(batteryCurrentCapacitymAh);
    NORVANE_FIELD(batteryHealthCondition);
    NORVANE_FIELD(batteryTemperatureC);
    NORVANE_FIELD(batteryPercentage);
    NORVANE_FIELD(batteryTimeRemaining);
    NORVANE_FIELD(deviceModelName);
    NORVANE_FIELD(deviceModelIcon);
    NORVANE_FIELD(isCharging);
    NORVANE_FIELD(hasBattery);
    NORVANE_FIELD(isCPUModerateLoad);
    NORVANE_FIELD(isGPUSaturated);
    NORVANE_FIELD(isGPUHigh);
    NORVANE_FIELD(isGPUActive);
    NORVANE_FIELD(isPCoreSaturated);
    NORVANE_FIELD(isPCoreActive);
    NORVANE_FIELD(isSystemIdle);
    NORVANE_FIELD(isAppleSiliconOptimized);
    NORVANE_FIELD(isMemoryThrashing);
    NORVANE_FIELD(isMemorySwapHigh);
    NORVANE_FIELD(isMemoryHighlyCompressed);
    NORVANE_FIELD(isMemoryCachingActive);
    NORVANE_FIELD(isStorageCritical);
    NORVANE_FIELD(isStorageLow);
    NORVANE_FIELD(isStorageFilling);
    NORVANE_FIELD(isStorageHeavyIO);
    NORVANE_FIELD(isBatteryWarm);
#undef NORVANE_FIELD
}

}  // namespace

std::string differences(const Outcome& a, const Outcome& b) {
    std::string names;
    const auto note = [&](bool differs, const char* name) {
        if (differs) names += std::string(names.empty() ? "" : ", ") + name;
    };
    forEachField(
        [&](const char* name, auto field) { note(!(a.snapshot.*field == b.snapshot.*field), name); });
    note(a.systemState != b.systemState, "the published systemState");
    note(!(a.menuBarStats == b.menuBarStats), "menuBarStats");
    note(!(a.newestPoint == b.newestPoint), "cpuHistory");
    note(a.shown != b.shown, "notifications");
    note(a.printed != b.printed, "printed lines");
    // Should a field ever be missing above.
    if (names.empty() && !(a == b)) names = "a field without a name";
    return names;
}

}  // namespace norvane
