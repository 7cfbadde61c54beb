#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/WallInstant.h"
#include "telemetry/ComponentState.h"
#include "telemetry/DiskSnapshot.h"
#include "telemetry/ImpactState.h"
#include "telemetry/ThermalLevel.h"

namespace norvane {

// A complete picture of the machine at one moment: the one record that dashboard, insight and alerts read.
// Everything derived is decided once, in the tick, so that all readers agree. It is built whole (no field has
// a default, and leaving one out is a warning) and handed on as a pointer to an immutable value. There is no
// empty snapshot: before the first one there is none.
//
// Percentages run from 0 to 100. `GB` is 2^30 bytes for memory and 10^9 bytes for disks, `MBps` is 2^20 bytes
// a second, temperatures are degrees Celsius. A reading that failed or was not taken is 0, false or absent
// unless the field says otherwise.
struct SystemSnapshot {
    bool isAppleSilicon;
    // When this snapshot was assembled.
    WallInstant timestamp;

    // Debounced.
    ComponentState cpuState;
    ComponentState memoryState;

    // User, system and nice over all ticks of the whole machine.
    double cpuUsagePercent;
    // Mean of the last three of these.
    double cpuSustained;
    double performanceCoreUsage;
    double efficiencyCoreUsage;
    // One value for each core, in core order. All zeros, of the right length, on the very first reading.
    std::vector<double> efficiencyCoreUsages;
    std::vector<double> performanceCoreUsages;
    // Over all cores, since the last per-core reading.
    double idlePercent;
    // Seconds since the system started.
    double uptime;
    double gpuUsage;

    // Wired, app and compressed memory together.
    double usedMemoryGB;
    double totalMemoryGB;
    double wiredMemoryGB;
    double compressedMemoryGB;
    double appMemoryGB;
    double swapUsedGB;
    // 1 normal, 2 warning, 4 critical. 1 without a reading.
    std::int64_t memoryPressure;
    double cachedFilesGB;
    double swapReadMBps;
    double swapWriteMBps;

    // Of the boot volume; 0 when there is none.
    double usedDiskGB;
    double totalDiskGB;
    // Over all drives.
    double diskReadMBps;
    double diskWriteMBps;
    std::vector<DiskSnapshot> volumes;

    // True before the first battery reading.
    bool isOnBattery;
    ThermalLevel thermalLevel;
    // Debounced.
    ImpactState energyImpact;
    std::optional<std::int64_t> batteryCycleCount;
    std::optional<std::int64_t> batteryDesignCapacitymAh;
    std::optional<std::int64_t> batteryMaxCapacitymAh;
    std::optional<std::int64_t> batteryCurrentCapacitymAh;
    std::optional<std::string> batteryHealthCondition;
    std::optional<double> batteryTemperatureC;
    // 100 before the first battery reading.
    std::int64_t batteryPercentage;
    std::string batteryTimeRemaining;

    // The model's name for people, and the name of its symbol.
    std::string deviceModelName;
    std::string deviceModelIcon;

    bool isCharging;
    // True before the first battery reading.
    bool hasBattery;

    // Flags, each the output of a band with two thresholds.
    bool isCPUModerateLoad;
    bool isGPUSaturated;
    bool isGPUHigh;
    bool isGPUActive;
    bool isPCoreSaturated;
    bool isPCoreActive;
    bool isSystemIdle;
    bool isAppleSiliconOptimized;
    bool isMemoryThrashing;
    bool isMemorySwapHigh;
    bool isMemoryHighlyCompressed;
    bool isMemoryCachingActive;
    bool isStorageCritical;
    bool isStorageLow;
    bool isStorageFilling;
    bool isStorageHeavyIO;
    bool isBatteryWarm;

    bool operator==(const SystemSnapshot&) const = default;
};

}  // namespace norvane
