#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "platform/linux/DeviceNumber.h"
#include "platform/linux/Mount.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

// The block devices that file systems lie on, and how they are connected to the machine, from sysfs ("Rules
// on how to access information in sysfs" in the kernel's documentation). What has been found out about a disk
// is kept for the life of this, so one of these serves for one scan. Any thread, one at a time.
class BlockDevices {
 public:
    struct Device {
        DeviceNumber number;
        // Below "/sys/devices", free of links; empty where sysfs does not know the device.
        std::string folder;

        // "sda1"; empty without a folder.
        std::string name() const;
    };
    struct Connection {
        // Comes and goes: plugged in from outside, or an image.
        bool isExternal = false;
        bool isEjectable = false;

        bool operator==(const Connection&) const = default;
    };

    explicit BlockDevices(RootFolder root);

    // The device, or one of the devices, that holds the file system; none for one that has none of its own.
    std::optional<Device> behind(const Mount& mount);

    // Of the disks behind a device, through partitions, encryption and volume managers: one that is external,
    // or ejectable, makes the device so. None where sysfs does not know the device.
    std::optional<Connection> connection(const Device& device);

    // Where the link at `path`, in a folder without links, leads: a path without links, if no folder on the
    // way is one. None where there is no link.
    static std::optional<std::string> linkTarget(const RootFolder& root, const std::string& path);

 private:
    std::optional<Device> named(const std::string& source);
    std::optional<std::string> mappedName(const std::string& mappingName);
    void addDisks(const std::string& folder, int depth, std::unordered_set<std::string>& visited,
                  Connection& sum);
    Connection ofDisk(const std::string& folder);
    bool isOnPluggableBus(std::string_view folder);

    RootFolder root_;
    std::unordered_map<std::string, Connection> disks_;
    std::unordered_map<std::string, bool> removablePorts_;
    // Device mappings by their names; read when first asked for.
    std::optional<std::unordered_map<std::string, std::string>> mappings_;
};

}  // namespace norvane
