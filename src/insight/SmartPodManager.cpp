#include "insight/SmartPodManager.h"

#include "insight/SnapshotSection.h"
#include "telemetry/MemoryPressure.h"

namespace norvane {
namespace {

// Fixed, whatever threshold the user has set for alerts.
constexpr std::int64_t kCriticalBatteryBelow = 11;
constexpr std::int64_t kLowBatteryBelow = 21;

std::optional<SnapshotSection> standingOut(const SystemSnapshot& now) {
    const auto isBatteryBelow = [&now](std::int64_t percentage) {
        return now.isOnBattery && now.batteryPercentage < percentage;
    };
    if (now.isStorageCritical) return SnapshotSection::storage;
    // Heat is told where power is.
    if (now.thermalLevel == ThermalLevel::critical) return SnapshotSection::battery;
    if (isBatteryBelow(kCriticalBatteryBelow)) return SnapshotSection::battery;
    if (now.isMemoryThrashing) return SnapshotSection::memory;
    if (now.memoryPressure == kCriticalMemoryPressure) return SnapshotSection::memory;
    if (now.cpuState == ComponentState::critical) return SnapshotSection::cpu;
    if (now.isStorageLow) return SnapshotSection::storage;
    if (now.thermalLevel == ThermalLevel::serious) return SnapshotSection::battery;
    if (isBatteryBelow(kLowBatteryBelow)) return SnapshotSection::battery;
    if (now.memoryPressure > kNormalMemoryPressure) return SnapshotSection::memory;
    if (now.isMemorySwapHigh) return SnapshotSection::memory;
    if (now.isStorageHeavyIO) return SnapshotSection::storage;
    return std::nullopt;
}

}  // namespace

std::optional<std::string> SmartPodManager::evaluate(const SystemSnapshot& snapshot) const {
    const auto section = standingOut(snapshot);
    return section ? std::optional<std::string>(rawTextOf(*section)) : std::nullopt;
}

}  // namespace norvane
