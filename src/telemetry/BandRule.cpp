#include "telemetry/BandRule.h"

#include "telemetry/BootVolume.h"

namespace norvane {
namespace {

using S = SystemSnapshot;

double shareOfMemory(const S& s, double gigabytes) {
    return s.totalMemoryGB > 0 ? gigabytes / s.totalMemoryGB : 0;
}

// Without a boot volume there is no lack of space to warn of.
double freeGB(const S& s) {
    constexpr double kPlenty = 1000.0;
    const DiskSnapshot* const boot = bootVolumeOf(s.volumes);
    return boot != nullptr ? boot->availableForImportantUsage : kPlenty;
}

double filledShare(const S& s) {
    const DiskSnapshot* const boot = bootVolumeOf(s.volumes);
    return boot != nullptr && boot->totalGB > 0 ? boot->usedGB / boot->totalGB : 0;
}

// Percent, the performance cores weighing more than the graphics processors.
double impactScore(const S& s) {
    return s.performanceCoreUsage * 0.7 + s.gpuUsage * 0.3;
}

constexpr auto kRising = BandRule::Direction::rising;
constexpr auto kFalling = BandRule::Direction::falling;

}  // namespace

// Percentages, percentage points, MB/s, GB, shares of 1, degrees Celsius.
// clang-format off
const std::array<BandRule, 19> kBandRules{{
    // band                      on     off    direction
    {Band::cpuModerateLoadBand,   63.0,  57.0, kRising,  [](const S& s) { return s.cpuSustained; },                                 &S::isCPUModerateLoad},
    {Band::gpuCriticalBand,       80.0,  65.0, kRising,  [](const S& s) { return s.gpuUsage; },                                     &S::isGPUSaturated},
    {Band::gpuHighBand,           60.0,  45.0, kRising,  [](const S& s) { return s.gpuUsage; },                                     &S::isGPUHigh},
    {Band::gpuActiveBand,         40.0,  25.0, kRising,  [](const S& s) { return s.gpuUsage; },                                     &S::isGPUActive},
    {Band::pCoreCriticalBand,     85.0,  70.0, kRising,  [](const S& s) { return s.performanceCoreUsage; },                         &S::isPCoreSaturated},
    {Band::pCoreActiveBand,       50.0,  35.0, kRising,  [](const S& s) { return s.performanceCoreUsage; },                         &S::isPCoreActive},
    {Band::idleBand,              85.0,  75.0, kRising,  [](const S& s) { return s.idlePercent; },                                  &S::isSystemIdle},
    {Band::optimizedBand,         20.0,   5.0, kRising,  [](const S& s) { return s.efficiencyCoreUsage - s.performanceCoreUsage; }, &S::isAppleSiliconOptimized},
    {Band::thrashingBand,         25.0,  10.0, kRising,  [](const S& s) { return s.swapReadMBps + s.swapWriteMBps; },               &S::isMemoryThrashing},
    {Band::swapHighBand,           1.5,   1.0, kRising,  [](const S& s) { return s.swapUsedGB; },                                   &S::isMemorySwapHigh},
    {Band::compressionBand,       0.25,  0.15, kRising,  [](const S& s) { return shareOfMemory(s, s.compressedMemoryGB); },         &S::isMemoryHighlyCompressed},
    {Band::cachingBand,            0.2,   0.1, kRising,  [](const S& s) { return shareOfMemory(s, s.cachedFilesGB); },              &S::isMemoryCachingActive},
    {Band::storageCriticalBand,   10.0,  12.0, kFalling, freeGB,                                                                    &S::isStorageCritical},
    {Band::storageLowBand,        30.0,  35.0, kFalling, freeGB,                                                                    &S::isStorageLow},
    {Band::storageFillingBand,    0.85,   0.8, kRising,  filledShare,                                                               &S::isStorageFilling},
    {Band::storageIOBand,        400.0, 200.0, kRising,  [](const S& s) { return s.diskReadMBps + s.diskWriteMBps; },               &S::isStorageHeavyIO},
    {Band::batteryWarmBand,       35.0,  32.0, kRising,  [](const S& s) { return s.batteryTemperatureC.value_or(0); },              &S::isBatteryWarm},
    {Band::impactModerateBand,    22.0,  15.0, kRising,  impactScore,                                                               nullptr},
    {Band::impactHighBand,        57.0,  50.0, kRising,  impactScore,                                                               nullptr},
}};
// clang-format on

}  // namespace norvane
