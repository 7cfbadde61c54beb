#include "platform/linux/VolumeMounts.h"

#include <array>
#include <cstddef>
#include <utility>

#include "platform/linux/BlockDevices.h"
#include "platform/linux/DesktopMountOptions.h"
#include "platform/linux/MountInfo.h"
#include "platform/linux/OsReleaseName.h"
#include "platform/linux/UdevData.h"
#include "platform/linux/VolumeLabels.h"
#include "platform/linux/VolumeRules.h"

namespace norvane {

namespace {

// A line takes 100 to 200 bytes: room for a hundred thousand mounts.
constexpr std::size_t kLargestTable = std::size_t{32} << 20;

std::optional<std::string> systemName(const RootFolder& root) {
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        if (const auto text = root.read(path)) return parseOsReleaseName(*text);
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::vector<Mount>> readMounts(const RootFolder& root) {
    const auto text = root.read("/proc/self/mountinfo", kLargestTable);
    if (!text) return std::nullopt;
    return parseMountInfo(*text);
}

std::optional<VolumeMounts> readVolumeMounts(const RootFolder& root) {
    auto table = readMounts(root);
    if (!table) return std::nullopt;
    VolumeMounts answer;
    answer.table = std::move(*table);

    const auto options = parseUtab(root.read("/run/mount/utab", kLargestTable).value_or(""));
    std::vector<const Mount*> candidates;
    for (const Mount& mount : answer.table) {
        const auto found = options.find(mount.point);
        const bool isForPeople =
            isVolume(mount, found != options.end() ? found->second : DesktopMountOptions{});
        if (isForPeople) candidates.push_back(&mount);
    }

    BlockDevices devices(root);
    VolumeLabels labels(root);
    for (const std::size_t index : onePerFileSystem(candidates)) {
        VolumeMount volume{*candidates[index], {}, {}, false};
        if (const auto device = devices.behind(volume.mount)) {
            const UdevData data =
                parseUdevData(root.read("/run/udev/data/b" + device->number.text()).value_or(""));
            if (data.isIgnored) continue;
            volume.name = labels.label(*device, data);
            if (const auto connection = devices.connection(*device)) {
                volume.isInternal = !connection->isExternal;
                volume.isEjectable = connection->isEjectable;
            }
        }
        if (!volume.name && volume.mount.point == "/") volume.name = systemName(root);
        answer.volumes.push_back(std::move(volume));
    }
    return answer;
}

}  // namespace norvane
