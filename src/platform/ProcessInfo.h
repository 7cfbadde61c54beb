#pragma once

#include <cstdint>

#include "platform/TickToken.h"

namespace norvane {

// The machine as a process sees it. The calls return soon, never throw and never fail.
class ProcessInfo {
 public:
    virtual ~ProcessInfo() = default;

    // Bytes of memory. Sampler's queue only.
    virtual std::uint64_t physicalMemory(TickToken tick) = 0;
    // 0 nominal, 1 fair, 2 serious, 3 critical; 0 where nothing is known. Sampler's queue only.
    virtual int thermalState(TickToken tick) = 0;
    // Seconds since the machine started, sleep included. Sampler's queue only.
    virtual double systemUptime() = 0;
    // Any thread; drawing code may ask at every evaluation.
    virtual bool isLowPowerModeEnabled() = 0;
};

}  // namespace norvane
