#pragma once

#include <vector>

#include "platform/FileManager.h"
#include "platform/UUIDSource.h"
#include "telemetry/DiskSnapshot.h"

namespace norvane {

// Lists the mounted volumes with their capacities. Belongs to the tick; keeps nothing.
class VolumeReader {
 public:
    VolumeReader(FileManager& fileManager, UUIDSource& uuidSource)
        : fileManager_(fileManager), uuidSource_(uuidSource) {}

    // In the machine's order. Empty where the volumes cannot be listed; one whose values cannot be read, or
    // that has no total capacity, is left out.
    std::vector<DiskSnapshot> readMountedVolumes(TickToken tick);

 private:
    FileManager& fileManager_;
    UUIDSource& uuidSource_;
};

}  // namespace norvane
