#pragma once

#include <cstdint>
#include <vector>

#include "platform/linux/BlockStat.h"
#include "platform/linux/VmStat.h"

namespace norvane {

// Pages that went to and came from swap on devices. The kernel's counters have the traffic with zram in them,
// which is memory; it is taken off again by what the zram devices themselves count.
class SwapTraffic {
 public:
    struct Device {
        unsigned zram = 0;
        BlockStat stat;
    };

    explicit SwapTraffic(std::uint64_t pageBytes) : pageBytes_(pageBytes) {}

    // One reading: the kernel's counters and those of all zram devices that are swapped to. The first one
    // starts the sums at the kernel's own. A device that was not in the last one takes nothing off, and a
    // device that was reset, and so counts from 0 again, moved nothing.
    void feed(const VmStat& vmStat, const std::vector<Device>& devices);

    // Never step back.
    std::uint64_t swapins() const { return sums_.pswpin; }
    std::uint64_t swapouts() const { return sums_.pswpout; }

 private:
    std::uint64_t pageBytes_;
    bool started_ = false;
    VmStat last_;
    VmStat sums_;
    std::vector<Device> lastDevices_;
};

}  // namespace norvane
