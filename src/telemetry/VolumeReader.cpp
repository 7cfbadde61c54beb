#include "telemetry/VolumeReader.h"

#include <algorithm>

#include "platform/Utf8.h"
#include "telemetry/Units.h"

namespace norvane {

std::vector<DiskSnapshot> VolumeReader::readMountedVolumes(TickToken tick) {
    const auto urls = fileManager_.mountedVolumeURLs(tick);
    if (!urls) return {};

    std::vector<DiskSnapshot> volumes;
    volumes.reserve(urls->size());
    for (const VolumeURL& url : *urls) {
        const auto& values = url.resourceValues();
        if (!values || !values->volumeTotalCapacity) continue;
        const double totalGB = static_cast<double>(*values->volumeTotalCapacity) / kBytesPerDiskGB;
        const double availableGB =
            static_cast<double>(values->volumeAvailableCapacity.value_or(0)) / kBytesPerDiskGB;
        volumes.push_back({
            .id = uuidSource_.next(),
            // Whoever made the file system chose the bytes of its name.
            .name = repairedUtf8(values->volumeName ? *values->volumeName : url.lastPathComponent()),
            .usedGB = std::max(totalGB - availableGB, 0.0),
            .totalGB = totalGB,
            .isExternal = values->volumeIsInternal == false,
            .isBootVolume = values->volumeIsRootFileSystem.value_or(false),
            .availableForImportantUsage = availableGB,
        });
    }
    return volumes;
}

}  // namespace norvane
