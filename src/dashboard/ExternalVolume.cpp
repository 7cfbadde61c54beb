#include "dashboard/ExternalVolume.h"

#include <algorithm>

#include "platform/Decimal.h"
#include "telemetry/Units.h"

namespace norvane {

double ExternalVolume::usedGB() const {
    return std::max(totalGB - availableGB, 0.0);
}

bool isRemovable(const VolumeURL& url) {
    const auto& values = url.resourceValues();
    if (!values || values->volumeIsRootFileSystem == true) return false;
    if (url.path() == "/" || url.path().starts_with("/System/Volumes")) return false;
    return values->volumeIsInternal == false || values->volumeIsEjectable == true;
}

std::vector<ExternalVolume> externalVolumesIn(const std::vector<VolumeURL>& urls, UUIDSource& uuidSource) {
    std::vector<ExternalVolume> volumes;
    for (const VolumeURL& url : urls) {
        if (!isRemovable(url)) continue;
        const VolumeResourceValues& values = *url.resourceValues();
        const auto gigabytes = [](std::optional<std::int64_t> bytes) {
            return static_cast<double>(bytes.value_or(0)) / kBytesPerDiskGB;
        };
        volumes.push_back({.id = uuidSource.next(),
                           .url = url.path(),
                           .name = values.volumeName ? *values.volumeName : url.lastPathComponent(),
                           .availableGB = gigabytes(values.volumeAvailableCapacity),
                           .totalGB = gigabytes(values.volumeTotalCapacity)});
    }
    return volumes;
}

std::string formatVolumeSize(double gigabytes) {
    if (gigabytes >= kGBPerTB) return decimal(gigabytes / kGBPerTB, 2) + " TB";
    return decimal(gigabytes, 2) + " GB";
}

}  // namespace norvane
