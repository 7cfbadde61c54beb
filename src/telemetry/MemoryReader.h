#pragma once

#include <cstdint>

#include "platform/HostPort.h"
#include "platform/ProcessInfo.h"
#include "platform/Sysctl.h"
#include "platform/WallClock.h"
#include "telemetry/MemoryBasics.h"
#include "telemetry/MemoryDetail.h"
#include "telemetry/RateInterval.h"

namespace norvane {

// Turns page counts into gigabytes and swap counters into rates. Belongs to the tick.
class MemoryReader {
 public:
    MemoryReader(HostPort& hostPort, Sysctl& sysctl, ProcessInfo& processInfo, const WallClock& wallClock)
        : hostPort_(hostPort), sysctl_(sysctl), processInfo_(processInfo), wallClock_(wallClock) {}

    // Read on every tick. `total` is always right; the rest is 0 where the page counts can't be read, and
    // `swap` alone where the swap can't.
    MemoryBasics readMemoryBasics(TickToken tick);

    // 1 normal, 2 warning, 4 critical, unchanged from the kernel; 1 where it can't be read.
    std::int64_t readMemoryPressure(TickToken tick);

    // All zeros on a failed read, which leaves the baseline of the rates as it was. The rates are over the
    // time since the last good read; 0 where there was none, where it is 5 seconds or more ago, and where the
    // clock stepped back.
    MemoryDetail readMemoryDetail(TickToken tick);

 private:
    HostPort& hostPort_;
    Sysctl& sysctl_;
    ProcessInfo& processInfo_;
    const WallClock& wallClock_;

    std::uint64_t lastPageIns_ = 0;
    std::uint64_t lastPageOuts_ = 0;
    // `CFAbsoluteTimeGetCurrent`; 0 means never.
    RateInterval interval_;
};

}  // namespace norvane
