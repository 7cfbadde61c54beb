#pragma once

#include <string_view>
#include <vector>

#include "platform/linux/BlockStat.h"

namespace norvane {

// A line of /proc/diskstats ("I/O statistics fields" in the kernel's documentation).
struct DiskStatsLine {
    // As the kernel calls the device: "sda", "nvme0n1p2", "cciss/c0d0". Points into the text.
    std::string_view name;
    BlockStat stat;

    bool operator==(const DiskStatsLine&) const = default;
};

// Fills `lines` with one entry for each line that has a name and its counters, in the text's order. Kernels
// differ in how many columns follow those (discards, flushes): they are not looked at. Other lines are passed
// over.
void parseDiskStats(std::string_view text, std::vector<DiskStatsLine>& lines);

}  // namespace norvane
