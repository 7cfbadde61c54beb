#include "platform/linux/BlockDevices.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/linux/KernelText.h"
#include "platform/linux/PathParts.h"
#include "platform/linux/SmallFiles.h"
#include "platform/linux/VolumeRules.h"

namespace norvane {

namespace {

// Mappings upon mappings; real ones end after three or four.
constexpr int kDeepestHolder = 16;
constexpr unsigned kMostMinors = (1u << 20) - 1;
constexpr std::string_view kDevices = "/dev/";

bool isSet(const RootFolder& root, const std::string& path, std::string_view value) {
    return textOf(root, path) == value;
}

// "0000:3a:00.0", with longer domains on some machines.
bool isPCIAddress(std::string_view component) {
    return component.size() >= 12 && component[component.size() - 2] == '.' &&
           component[component.size() - 5] == ':' && component[component.size() - 8] == ':' &&
           component.find_first_not_of("0123456789abcdef:.") == std::string_view::npos;
}

// `path` with "." and ".." taken out, whether or not it exists.
std::string normalized(std::string_view path) {
    std::string result;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        const std::string_view component = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (component.empty() || component == ".") continue;
        if (component == "..") {
            result.resize(result.empty() ? 0 : result.rfind('/'));
        } else {
            result += '/';
            result += component;
        }
    }
    return result.empty() ? "/" : result;
}

// A partition lies in the folder of its disk.
bool isPartition(const RootFolder& root, const std::string& folder) {
    if (root.open((folder + "/partition").c_str())) return true;
    const std::string disks = "/sys/block/";
    return !root.readLink(disks + namePart(folder)) && root.readLink(disks + namePart(directoryPart(folder)));
}

// A device is known in sysfs by its path below "/dev", which may have slashes in it.
std::string sysfsName(std::string_view path) {
    std::string name(path.substr(kDevices.size()));
    std::replace(name.begin(), name.end(), '/', '!');
    return name;
}

}  // namespace

std::string BlockDevices::Device::name() const {
    return namePart(folder);
}

BlockDevices::BlockDevices(RootFolder root) : root_(std::move(root)) {}

std::optional<std::string> BlockDevices::linkTarget(const RootFolder& root, const std::string& path) {
    const auto link = root.readLink(path);
    if (!link) return std::nullopt;
    return normalized(link->front() == '/' ? *link : directoryPart(path) + '/' + *link);
}

std::optional<BlockDevices::Device> BlockDevices::behind(const Mount& mount) {
    // A ZFS pool lies on disks that only its own tools know.
    if (fileSystemKind(mount.type) != FileSystemKind::disk || mount.type == "zfs") return std::nullopt;
    if (!mount.device.isAnonymous()) {
        const std::string link = "/sys/dev/block/" + mount.device.text();
        if (auto folder = linkTarget(root_, link)) return Device{mount.device, std::move(*folder)};
        const auto device = named(mount.source);
        return Device{mount.device, device && device->number == mount.device ? device->folder : ""};
    }
    // A file system on several disks has a number of its own and names one of them, or all.
    if (mount.type == "bcachefs") return named(mount.source.substr(0, mount.source.find(':')));
    return named(mount.source);
}

std::optional<BlockDevices::Device> BlockDevices::named(const std::string& source) {
    if (!source.starts_with(kDevices)) return std::nullopt;
    std::string path = source;
    // A name of the administrator's or of the device manager's is a link to the kernel's, perhaps by way of
    // another.
    for (int links = 0; links < 4; ++links) {
        if (!path.starts_with(kDevices)) return std::nullopt;
        const std::string name = sysfsName(path);
        const std::string entry = "/sys/class/block/" + name;
        if (auto folder = linkTarget(root_, entry)) {
            const auto text = root_.read(entry + "/dev");
            const auto number = text ? parseDeviceNumber(*text) : std::nullopt;
            if (!number) return std::nullopt;
            return Device{*number, std::move(*folder)};
        }
        constexpr std::string_view kMappings = "/dev/mapper/";
        auto target = linkTarget(root_, path);
        if (!target && path.starts_with(kMappings)) target = mappedName(path.substr(kMappings.size()));
        if (!target) return std::nullopt;
        path = std::move(*target);
    }
    return std::nullopt;
}

std::optional<std::string> BlockDevices::mappedName(const std::string& mappingName) {
    if (!mappings_) {
        mappings_.emplace();
        for (const std::string& name : root_.names("/sys/block")) {
            if (!numberAfter("dm-", name, kMostMinors)) continue;
            const auto text = root_.read("/sys/block/" + name + "/dm/name");
            if (text) mappings_->emplace(trimmed(*text), std::string(kDevices) + name);
        }
    }
    const auto found = mappings_->find(mappingName);
    if (found == mappings_->end()) return std::nullopt;
    return found->second;
}

std::optional<BlockDevices::Connection> BlockDevices::connection(const Device& device) {
    if (device.folder.empty()) return std::nullopt;
    Connection sum;
    std::unordered_set<std::string> visited;
    addDisks(device.folder, 0, visited, sum);
    return sum;
}

void BlockDevices::addDisks(const std::string& folder, int depth, std::unordered_set<std::string>& visited,
                            Connection& sum) {
    if (depth > kDeepestHolder || !visited.insert(folder).second) return;
    const std::string disk = isPartition(root_, folder) ? directoryPart(folder) : folder;

    const std::string slaves = disk + "/slaves/";
    bool hasSlaves = false;
    for (const std::string& name : root_.names(slaves)) {
        const auto slave = linkTarget(root_, slaves + name);
        if (!slave) continue;
        hasSlaves = true;
        addDisks(*slave, depth + 1, visited, sum);
    }
    if (hasSlaves) return;

    const auto known = disks_.find(disk);
    const Connection own =
        known != disks_.end() ? known->second : disks_.emplace(disk, ofDisk(disk)).first->second;
    sum.isExternal = sum.isExternal || own.isExternal;
    sum.isEjectable = sum.isEjectable || own.isEjectable;
}

BlockDevices::Connection BlockDevices::ofDisk(const std::string& folder) {
    const std::string name = namePart(folder);
    if (numberAfter("loop", name, kMostMinors)) return {true, true};
    bool isExternal = isOnPluggableBus(folder);
    // A drive with several controllers has no place on a bus itself, but beside it are links to them
    // ("NVMe multipath").
    if (folder.find("/virtual/nvme-subsystem/") != std::string::npos) {
        const std::string subsystem = directoryPart(folder) + '/';
        for (const std::string& controller : root_.names(subsystem)) {
            if (!numberAfter("nvme", controller)) continue;
            const auto place = linkTarget(root_, subsystem + controller);
            isExternal = isExternal || (place && isOnPluggableBus(*place));
        }
    }
    if (name.starts_with("mmcblk")) {
        // The same bus has soldered memory and cards.
        isExternal = isExternal || isSet(root_, folder + "/device/type", "SD");
    }
    // The flag is about the medium, not the drive: a card reader's slot has it, a USB hard disk has not, and
    // some internal SATA ports have it too.
    return {isExternal, isExternal || isSet(root_, folder + "/removable", "1")};
}

bool BlockDevices::isOnPluggableBus(std::string_view folder) {
    for (std::size_t begin = 1; begin < folder.size();) {
        const std::size_t end = std::min(folder.find('/', begin), folder.size());
        const std::string_view component = folder.substr(begin, end - begin);
        if (numberAfter("usb", component) || numberAfter("fw", component)) return true;
        if (isPCIAddress(component)) {
            // Firmware tells which ports lead outside, as those of Thunderbolt do.
            const std::string port(folder.substr(0, end));
            const auto known = removablePorts_.find(port);
            if (known != removablePorts_.end()
                    ? known->second
                    : removablePorts_.emplace(port, isSet(root_, port + "/removable", "removable"))
                          .first->second) {
                return true;
            }
        }
        begin = end + 1;
    }
    return false;
}

}  // namespace norvane
