#include "insight/StorageInsight.h"

#include "insight/AtVerbosity.h"
#include "telemetry/BootVolume.h"
#include "telemetry/Sentences.h"

namespace norvane {
namespace {

std::string_view storageExplanation(const SystemSnapshot& now, double readMBps, double writeMBps) {
    if (now.isStorageCritical) return sentences::kStorageCritical;
    if (now.isStorageLow) return sentences::kStorageLow;
    if (now.isStorageHeavyIO && readMBps < writeMBps) return sentences::kStorageHeavyWrite;
    if (now.isStorageHeavyIO) return sentences::kStorageHeavyRead;
    if (now.isStorageFilling) return sentences::kStorageFilling;
    return sentences::kStorageHealthy;
}

}  // namespace

std::string_view storageInsightText(const SystemSnapshot* snapshot, const std::vector<DiskSnapshot>& volumes,
                                    double readMBps, double writeMBps, InsightVerbosity verbosity) {
    // The first boot volume is the first of the primary ones that is one.
    if (snapshot == nullptr || bootVolumeOf(volumes) == nullptr) return sentences::kStorageUnavailable;
    return atVerbosity(verbosity, storageExplanation(*snapshot, readMBps, writeMBps));
}

}  // namespace norvane
