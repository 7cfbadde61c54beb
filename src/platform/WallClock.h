#pragma once

#include "platform/WallInstant.h"

namespace norvane {

// The time that people see; it may be set, and jumps over a suspend. Any thread may ask; never blocks, never
// fails.
class WallClock {
 public:
    virtual ~WallClock() = default;

    virtual WallInstant now() const = 0;

    // Seconds since 2001-01-01 00:00 UTC.
    double CFAbsoluteTimeGetCurrent() const {
        constexpr std::chrono::seconds kReferenceDate{978'307'200};
        return std::chrono::duration<double>(now().time_since_epoch() - kReferenceDate).count();
    }
};

}  // namespace norvane
