#include "platform/linux/Volumes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "platform/linux/VolumeRules.h"

namespace norvane {

namespace {

// A read-only root may well be larger, but no system has room to work in less.
constexpr std::uint64_t kSmallestRoot = std::uint64_t{1} << 30;

std::int64_t bytes(std::uint64_t count) {
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(std::min(count, kMost));
}

VolumeResourceValues valuesWithoutSize(const VolumeMount& volume) {
    VolumeResourceValues values;
    values.volumeName = volume.name;
    values.volumeIsInternal = volume.isInternal;
    values.volumeIsRootFileSystem = volume.mount.point == "/";
    values.volumeIsEjectable = volume.isEjectable;
    return values;
}

VolumeResourceValues valuesOf(const VolumeMount& volume, const FileSystemSpace& space) {
    VolumeResourceValues values = valuesWithoutSize(volume);
    values.volumeTotalCapacity = bytes(space.totalBytes);
    values.volumeAvailableCapacity = bytes(space.availableBytes);
    return values;
}

}  // namespace

// The folders that a server or another program answers for. The way to what is mounted within one leads past
// it, and may end there.
class Volumes::ServedFolders {
 public:
    // The table outlives this.
    explicit ServedFolders(const std::vector<Mount>& table) {
        for (const Mount& mount : table) {
            // Nothing goes on where the root of all hangs.
            if (mount.point != "/" && mayHang(mount)) points_.insert(mount.point);
        }
    }

    // Whether the path is one of them, or lies within one.
    bool hold(std::string_view path) const {
        for (; !points_.empty() && !path.empty(); path = path.substr(0, path.rfind('/'))) {
            if (points_.contains(path)) return true;
        }
        return false;
    }

 private:
    std::unordered_set<std::string_view> points_;
};

Volumes::Volumes(RootFolder root, SystemCalls calls, std::shared_ptr<LaneWaiter> waiter)
    : root_(std::move(root)), calls_(calls), servers_(std::move(calls), std::move(waiter)) {}

std::shared_ptr<const Volumes::List> Volumes::read() {
    const auto mounts = readVolumeMounts(root_);
    if (!mounts) return nullptr;

    const ServedFolders folders(mounts->table);
    const auto isServed = [&folders](const Mount& mount) {
        return mayHang(mount) || folders.hold(mount.point);
    };
    std::vector<const Mount*> served;
    for (const VolumeMount& volume : mounts->volumes) {
        if (isServed(volume.mount)) served.push_back(&volume.mount);
    }
    const auto answers = servers_.ask(served, mounts->table);

    auto list = std::make_shared<List>();
    list->reserve(mounts->volumes.size());
    std::size_t next = 0;
    for (const VolumeMount& volume : mounts->volumes) {
        std::optional<FileSystemSpace> space;
        if (isServed(volume.mount)) {
            const auto& answer = answers[next++];
            if (!answer) continue;
            space = answer->space;
        } else {
            space = spaceOf(volume.mount, folders);
        }
        std::optional<VolumeResourceValues> values;
        if (space) values = valuesOf(volume, *space);
        list->emplace_back(volume.mount.point, std::move(values));
    }
    return list;
}

std::optional<Volumes::List> Volumes::readRemovable() const {
    const auto mounts = readVolumeMounts(root_);
    if (!mounts) return std::nullopt;

    const ServedFolders folders(mounts->table);
    List list;
    list.reserve(mounts->volumes.size());
    for (const VolumeMount& volume : mounts->volumes) {
        const Mount& mount = volume.mount;
        std::optional<VolumeResourceValues> values;
        const bool mayBeRemovable = volume.isInternal == false || volume.isEjectable;
        if (!mayBeRemovable || mayHang(mount) || folders.hold(mount.point)) {
            values = valuesWithoutSize(volume);
        } else if (const auto space = spaceOf(mount, folders)) {
            values = valuesOf(volume, *space);
        }
        list.emplace_back(mount.point, std::move(values));
    }
    return list;
}

std::optional<FileSystemSpace> Volumes::spaceOf(const Mount& mount, const ServedFolders& served) const {
    const auto own = calls_.fileSystemSpace(mount.point);
    if (mount.point != "/" || !isCompositeType(mount.type)) return own;
    if (own && !mount.isReadOnly && own->totalBytes >= kSmallestRoot) return own;
    // An image of the operating system, always full. What users and programs write lies elsewhere; a folder
    // that is merely a part of the image gives the same answer.
    for (const char* path : {"/sysroot", "/var"}) {
        if (served.hold(path)) continue;
        const auto space = calls_.fileSystemSpace(path);
        if (space && space != own) return space;
    }
    return own;
}

}  // namespace norvane
