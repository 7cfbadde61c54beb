#include "dashboard/PodValue.h"

#include "platform/Decimal.h"

namespace norvane {
namespace {

// Both in gigabytes. A whole of 1024 and more is told in terabytes, however little of it is used.
PodValue usedOf(double used, double total, int places) {
    constexpr double kTerabyteInGB = 1024.0;
    if (total >= kTerabyteInGB) return {decimal(used / kTerabyteInGB, places), "TB used"};
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

}  // namespace norvane
