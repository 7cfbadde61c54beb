#pragma once

#include <cstdint>

#include "platform/linux/CPUTicks.h"

namespace norvane {

// Makes counters that never step back out of the kernel's, which do: waiting for a disk is taken back, idle
// time of a running processor falls by a tick, and all may restart when a processor is plugged in again.
//
// Each counter has a high-water mark, and only what rises above it counts. A fall by more than `restartDrop`
// is a restart: the marks follow, and nothing counts this time, since a counter that moved next to one that
// could not would look like a processor that was busy all the time.
class TickCounters {
 public:
    void feed(const CPUTicks& now, std::uint64_t restartDrop);

    // The 64-bit sums; ports answer their lower 32 bits.
    const CPUTicks& sums() const { return sums_; }

 private:
    CPUTicks marks_;
    CPUTicks sums_;
};

}  // namespace norvane
