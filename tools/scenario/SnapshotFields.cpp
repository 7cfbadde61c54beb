#include "scenario/SnapshotFields.h"

#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "scenario/ShownJson.h"

namespace norvane {
namespace {

using S = SystemSnapshot;

template <auto kField>
Json shown(const S& snapshot) {
    return shownJson(snapshot.*kField);
}

constexpr SnapshotField kFields[] = {
    {"isAppleSilicon", shown<&S::isAppleSilicon>},
    {"timestamp", shown<&S::timestamp>},
    {"cpuState", shown<&S::cpuState>},
    {"memoryState", shown<&S::memoryState>},
    {"cpuUsagePercent", shown<&S::cpuUsagePercent>},
    {"cpuSustained", shown<&S::cpuSustained>},
    {"performanceCoreUsage", shown<&S::performanceCoreUsage>},
    {"efficiencyCoreUsage", shown<&S::efficiencyCoreUsage>},
    {"efficiencyCoreUsages", shown<&S::efficiencyCoreUsages>},
    {"performanceCoreUsages", shown<&S::performanceCoreUsages>},
    {"idlePercent", shown<&S::idlePercent>},
    {"uptime", shown<&S::uptime>},
    {"gpuUsage", shown<&S::gpuUsage>},
    {"usedMemoryGB", shown<&S::usedMemoryGB>},
    {"totalMemoryGB", shown<&S::totalMemoryGB>},
    {"wiredMemoryGB", shown<&S::wiredMemoryGB>},
    {"compressedMemoryGB", shown<&S::compressedMemoryGB>},
    {"appMemoryGB", shown<&S::appMemoryGB>},
    {"swapUsedGB", shown<&S::swapUsedGB>},
    {"memoryPressure", shown<&S::memoryPressure>},
    {"cachedFilesGB", shown<&S::cachedFilesGB>},
    {"swapReadMBps", shown<&S::swapReadMBps>},
    {"swapWriteMBps", shown<&S::swapWriteMBps>},
    {"usedDiskGB", shown<&S::usedDiskGB>},
    {"totalDiskGB", shown<&S::totalDiskGB>},
    {"diskReadMBps", shown<&S::diskReadMBps>},
    {"diskWriteMBps", shown<&S::diskWriteMBps>},
    {"volumes", shown<&S::volumes>},
    {"isOnBattery", shown<&S::isOnBattery>},
    {"thermalLevel", shown<&S::thermalLevel>},
    {"energyImpact", shown<&S::energyImpact>},
    {"batteryCycleCount", shown<&S::batteryCycleCount>},
    {"batteryDesignCapacitymAh", shown<&S::batteryDesignCapacitymAh>},
    {"batteryMaxCapacitymAh", shown<&S::batteryMaxCapacitymAh>},
    {"batteryCurrentCapacitymAh", shown<&S::batteryCurrentCapacitymAh>},
    {"batteryHealthCondition", shown<&S::batteryHealthCondition>},
    {"batteryTemperatureC", shown<&S::batteryTemperatureC>},
    {"batteryPercentage", shown<&S::batteryPercentage>},
    {"batteryTimeRemaining", shown<&S::batteryTimeRemaining>},
    {"deviceModelName", shown<&S::deviceModelName>},
    {"deviceModelIcon", shown<&S::deviceModelIcon>},
    {"isCharging", shown<&S::isCharging>},
    {"hasBattery", shown<&S::hasBattery>},
    {"isCPUModerateLoad", shown<&S::isCPUModerateLoad>},
    {"isGPUSaturated", shown<&S::isGPUSaturated>},
    {"isGPUHigh", shown<&S::isGPUHigh>},
    {"isGPUActive", shown<&S::isGPUActive>},
    {"isPCoreSaturated", shown<&S::isPCoreSaturated>},
    {"isPCoreActive", shown<&S::isPCoreActive>},
    {"isSystemIdle", shown<&S::isSystemIdle>},
    {"isAppleSiliconOptimized", shown<&S::isAppleSiliconOptimized>},
    {"isMemoryThrashing", shown<&S::isMemoryThrashing>},
    {"isMemorySwapHigh", shown<&S::isMemorySwapHigh>},
    {"isMemoryHighlyCompressed", shown<&S::isMemoryHighlyCompressed>},
    {"isMemoryCachingActive", shown<&S::isMemoryCachingActive>},
    {"isStorageCritical", shown<&S::isStorageCritical>},
    {"isStorageLow", shown<&S::isStorageLow>},
    {"isStorageFilling", shown<&S::isStorageFilling>},
    {"isStorageHeavyIO", shown<&S::isStorageHeavyIO>},
    {"isBatteryWarm", shown<&S::isBatteryWarm>},
};

// Could be a value for any field; never made.
struct AnyValue {
    template <typename Value>
    operator Value() const {
        std::abort();
    }
};

template <std::size_t>
using AnyValueAt = AnyValue;

template <std::size_t... kAt>
constexpr bool takesAsMany(std::index_sequence<kAt...>) {
    return requires {
        S{AnyValueAt<kAt>{}...};
    };
}

// A snapshot that got a field is to be shown with it.
constexpr std::size_t kCount = std::size(kFields);
static_assert(takesAsMany(std::make_index_sequence<kCount>()));
static_assert(!takesAsMany(std::make_index_sequence<kCount + 1>()));

}  // namespace

std::span<const SnapshotField> snapshotFields() {
    return kFields;
}

}  // namespace norvane
