#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/DiskStats.h"
#include "platform/linux/KeptFile.h"
#include "platform/linux/RootFolder.h"
#include "platform/RegistryEntry.h"

namespace norvane {

// The machine's drives as the kernel counts their traffic. Sampler's queue only; answers at once.
//
// A drive is a disk (not a partition) that hangs on a bus. What the kernel makes of other devices (encrypted
// and logical volumes, RAID arrays, the one head of an NVMe disk with several paths) would count the same
// bytes again, and what lives in memory is no drive; all of these are virtual devices in sysfs.
class DiskDrivers {
 public:
    explicit DiskDrivers(RootFolder root);

    // A service for each drive, in the kernel's order. No value where the counters cannot be read. Costs one
    // read, and one more for each path of an NVMe disk that the kernel hides from its table, unless devices
    // came or went.
    std::optional<std::vector<RegistryEntry>> match();

 private:
    enum class Kind { noDisk, virtualDisk, drive };
    struct Device {
        std::string name;
        Kind kind;
    };
    // A disk that is in /sys/block but not in the table.
    struct Untold {
        std::string name;
        // Only of a hidden path, which is a drive.
        std::optional<KeptFile> stat;
    };

    bool isKnown(const std::vector<DiskStatsLine>& lines) const;
    // Finds out what the devices are. Those that were there before, and still are, stay what they were.
    void look(const std::vector<DiskStatsLine>& lines);
    Kind kindOf(const std::string& diskName) const;

    RootFolder root_;
    KeptFile table_;
    std::vector<DiskStatsLine> lines_;  // of the newest table; kept for its memory
    std::vector<Device> devices_;       // of the table's lines, in their order
    std::vector<Untold> untold_;        // sorted by name
    unsigned matchesUntilLook_ = 0;
};

}  // namespace norvane
