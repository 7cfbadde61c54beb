#include <algorithm>
#include <set>

#include "MachineInput.h"
#include "platform/linux/VolumeMounts.h"
#include "platform/linux/VolumeRules.h"
#include "Property.h"

namespace norvane {
namespace {

bool isOneOf(const std::vector<Mount>& table, const Mount& mount) {
    return std::find(table.begin(), table.end(), mount) != table.end();
}

}  // namespace

void check(std::string_view text) {
    const MachineInput machine(text);
    const auto mounts = readVolumeMounts(machine.root());
    if (!mounts) return;

    for (const Mount& mount : mounts->table)
        require(mayHang(mount) || mount.type != "autofs", "an automounter may be waited for");

    std::set<std::string> fileSystems;
    auto place = mounts->table.begin();
    for (const VolumeMount& volume : mounts->volumes) {
        const Mount& mount = volume.mount;
        require(isOneOf(mounts->table, mount), "a volume is mounted");
        place = std::find(place, mounts->table.end(), mount);
        require(place != mounts->table.end(), "volumes are in the order of the table");
        require(isVolume(mount, {}) || isVolume(mount, {false, true}), "a volume is one by the rules");
        require(mount.type != "autofs", "nothing is mounted by looking");
        require(!volume.name || !volume.name->empty(), "a name is not empty");
        require(volume.isInternal != false || volume.isEjectable, "what is plugged in can be unplugged");
        const FileSystemKind kind = fileSystemKind(mount.type);
        require(!volume.isInternal || kind == FileSystemKind::disk,
                "a server is neither inside nor outside of the machine");
        require(!isCompositeType(mount.type) || kind == FileSystemKind::other, "an image is no disk");
        require(mayHang(mount) == (kind == FileSystemKind::network || kind == FileSystemKind::userSpace) ||
                    mount.point == "/",
                "who may be waited for is known");
        const bool isPool = mount.type == "zfs";
        const std::string key = isPool ? mount.source.substr(0, mount.source.find('/')) : mount.device.text();
        require(fileSystems.insert(key).second, "each file system is there once");
    }
    require(std::count_if(mounts->volumes.begin(), mounts->volumes.end(),
                          [](const VolumeMount& volume) { return volume.mount.point == "/"; }) <= 1,
            "there is one root at most");
}

}  // namespace norvane
