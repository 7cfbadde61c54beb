#pragma once

#include <string>
#include <vector>

#include "platform/UUIDSource.h"
#include "platform/VolumeURL.h"

namespace norvane {

// A volume that can be taken away. Capacities are decimal gigabytes.
struct ExternalVolume {
    // New at every scan: it tells scans apart, not volumes.
    UUID id;
    // Where it is mounted, which is what it is known by.
    std::string url;
    // Any bytes.
    std::string name;
    double availableGB = 0;
    double totalGB = 0;

    // Never below 0.
    double usedGB() const;

    bool operator==(const ExternalVolume&) const = default;
};

// Whether a volume is one that the user may take away. One without values has gone, or cannot be read.
bool isRemovable(const VolumeURL& url);

// Those of the list, in its order.
std::vector<ExternalVolume> externalVolumesIn(const std::vector<VolumeURL>& urls, UUIDSource& uuidSource);

// The size of one: "500.00 GB", from 1024 on in terabytes.
std::string formatVolumeSize(double gigabytes);

}  // namespace norvane
