#include "dashboard/PodValue.h"

#include "platform/Decimal.h"
#include "telemetry/Units.h"

namespace norvane {
namespace {

// Both in gigabytes.
PodValue usedOf(double used, double total, int places) {
    if (total >= kGBPerTB) return {decimal(used / kGBPerTB, places), "TB used"};
    return {decimal(used, places), "GB used"};
}

}  // namespace

PodValue cpuPodValue(const SystemSnapshot* snapshot) {
    return {decimal(snapshot != nullptr ? snapshot->cpuUsagePercent : 0, 2), "%"};
}

PodValue memoryPodValue(const SystemSnapshot* snapshot) {
    if (snapshot == nullptr) return usedOf(0, 0, 2);
    return usedOf(snapshot->usedMemoryGB, snapshot->totalMemoryGB, 2);
}

PodValue storagePodValue(const SystemSnapshot* snapshot) {
    if (snapshot == nullptr) return usedOf(0, 0, 1);
    return usedOf(snapshot->usedDiskGB, snapshot->totalDiskGB, 1);
}

}  // namespace norvane
