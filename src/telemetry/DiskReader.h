#pragma once

#include <cstdint>

#include "platform/Registry.h"
#include "platform/WallClock.h"
#include "telemetry/DiskVelocity.h"
#include "telemetry/RateInterval.h"

namespace norvane {

// Turns the drives' cumulative byte counters into rates. Belongs to the tick.
class DiskReader {
 public:
    DiskReader(Registry& registry, const WallClock& wallClock) : registry_(registry), wallClock_(wallClock) {}

    // Over all drives since the last call. 0 on the first call, after a gap, and for a direction whose total
    // fell because a drive went away. A failed match gives zeros, and the next good one measures from the
    // last totals.
    DiskVelocity readDiskVelocity(TickToken tick);

 private:
    Registry& registry_;
    const WallClock& wallClock_;

    std::uint64_t lastDiskReadBytes_ = 0;
    std::uint64_t lastDiskWriteBytes_ = 0;
    RateInterval interval_;
};

}  // namespace norvane
