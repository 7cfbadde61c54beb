#include "platform/linux/DiskDrivers.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "platform/linux/KernelText.h"
#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

// Some 150 bytes for each of as many devices as anybody has had.
constexpr std::size_t kMostTableBytes = 4 << 20;
// Devices that come and go change the table's names, so this is only for hidden paths: a minute's worth while
// somebody watches.
constexpr unsigned kMatchesBetweenLooks = 20;
constexpr const char* kDisks = "/sys/block";

std::string folderOf(const std::string& diskName) {
    return std::string(kDisks) + "/" + diskName;
}

// A device may have a slash in its name, a folder may not.
std::string diskNameOf(std::string_view name) {
    std::string disk(name);
    std::replace(disk.begin(), disk.end(), '/', '!');
    return disk;
}

std::int64_t bytesIn(std::uint64_t sectors) {
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(std::min(saturatedProduct(sectors, BlockStat::kSectorBytes), kMost));
}

RegistryEntry serviceOf(const BlockStat& stat) {
    return RegistryEntry(
        {{"Statistics", PropertyDictionary{{"Bytes (Read)", bytesIn(stat.sectorsRead)},
                                           {"Bytes (Write)", bytesIn(stat.sectorsWritten)}}}});
}

// The place of the element of that name in a list that is sorted by name.
template <typename List>
auto findNamed(List& list, std::string_view name) {
    const auto place =
        std::lower_bound(list.begin(), list.end(), name,
                         [](const auto& element, std::string_view n) { return element.name < n; });
    return place != list.end() && place->name == name ? place : list.end();
}

}  // namespace

DiskDrivers::DiskDrivers(RootFolder root)
    : root_(std::move(root)), table_(root_, "/proc/diskstats", kMostTableBytes) {}

std::optional<std::vector<RegistryEntry>> DiskDrivers::match() {
    const auto text = table_.read();
    if (!text) return std::nullopt;
    parseDiskStats(*text, lines_);
    if (matchesUntilLook_ == 0 || !isKnown(lines_)) {
        look(lines_);
    } else {
        --matchesUntilLook_;
    }

    std::vector<RegistryEntry> services;
    services.reserve(devices_.size() + untold_.size());
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        if (devices_[i].kind == Kind::drive) services.push_back(serviceOf(lines_[i].stat));
    }
    for (Untold& disk : untold_) {
        if (!disk.stat) continue;
        const auto statText = disk.stat->read();
        const auto stat = statText ? parseBlockStat(*statText) : std::nullopt;
        if (stat) services.push_back(serviceOf(*stat));
        if (!disk.stat->exists()) matchesUntilLook_ = 0;  // it went: forget it
    }
    return services;
}

bool DiskDrivers::isKnown(const std::vector<DiskStatsLine>& lines) const {
    return std::equal(
        lines.begin(), lines.end(), devices_.begin(), devices_.end(),
        [](const DiskStatsLine& line, const Device& device) { return line.name == device.name; });
}

void DiskDrivers::look(const std::vector<DiskStatsLine>& lines) {
    matchesUntilLook_ = kMatchesBetweenLooks;
    const std::vector<std::string> disks = root_.names(kDisks);
    std::vector<Device> before = std::exchange(devices_, {});
    std::sort(before.begin(), before.end(), [](const Device& a, const Device& b) { return a.name < b.name; });

    std::vector<std::string> told;
    for (const DiskStatsLine& line : lines) {
        const auto known = findNamed(before, line.name);
        std::string disk = diskNameOf(line.name);
        Device device{std::string(line.name), Kind::noDisk};
        if (std::binary_search(disks.begin(), disks.end(), disk)) {
            const bool wasDisk = known != before.end() && known->kind != Kind::noDisk;
            device.kind = wasDisk ? known->kind : kindOf(disk);
            told.push_back(std::move(disk));
        } else if (known == before.end()) {
            // A new partition; or a new disk, which is in the table just before it is in the folder.
            matchesUntilLook_ = 0;
        }
        devices_.push_back(std::move(device));
    }

    std::sort(told.begin(), told.end());
    std::vector<Untold> untoldBefore = std::exchange(untold_, {});
    for (const std::string& disk : disks) {
        if (std::binary_search(told.begin(), told.end(), disk)) continue;
        const auto known = findNamed(untoldBefore, disk);
        if (known != untoldBefore.end() && !(known->stat && !known->stat->exists())) {
            untold_.push_back(std::move(*known));
            continue;
        }
        Untold found{disk, {}};
        const std::string folder = folderOf(disk);
        if (parseNumber(root_.read(folder + "/hidden", 64).value_or("")) == 1u &&
            kindOf(disk) == Kind::drive) {
            found.stat.emplace(root_, folder + "/stat");
        }
        untold_.push_back(std::move(found));
    }
}

DiskDrivers::Kind DiskDrivers::kindOf(const std::string& diskName) const {
    const auto target = root_.readLink(folderOf(diskName));
    if (!target) return Kind::noDisk;
    return target->find("/devices/virtual/") != std::string::npos ? Kind::virtualDisk : Kind::drive;
}

}  // namespace norvane
