#pragma once

#include <memory>
#include <vector>

#include "preferences/InsightVerbosity.h"
#include "telemetry/SystemSnapshot.h"
#include "views/Element.h"

namespace norvane {

// The panel of the storage: how full the machine's own is, what flows to and from it, and the sentence.
struct StorageExpandedView {
    std::shared_ptr<const SystemSnapshot> snapshot;
    std::vector<DiskSnapshot> volumes = {};
    // Of the boot volume, in decimal gigabytes.
    double snapshotUsed = 0;
    double snapshotTotal = 0;
    // Over all drives.
    double readMBps = 0;
    double writeMBps = 0;
    InsightVerbosity verbosity = InsightVerbosity::detailed;

    // As the snapshot, which is not null, has it all.
    static StorageExpandedView of(std::shared_ptr<const SystemSnapshot> snapshot, InsightVerbosity verbosity);

    Element body() const;
};

}  // namespace norvane
