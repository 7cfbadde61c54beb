#pragma once

#include <cstdint>
#include <optional>

#include "platform/MonotonicInstant.h"

namespace norvane {

// How busy a device was, from a counter of the milliseconds that it spent in its sleep between two pieces of
// work. It reads high: a device that waits without sleeping counts as busy.
class IdleResidency {
 public:
    // Percent, 0 to 100, since the last call. None at the first call, after a counter that went back, and
    // while the counter says that the device has never slept: such a sleep is switched off.
    std::optional<double> busyPercent(std::uint64_t idleMilliseconds, MonotonicInstant at);

 private:
    struct Reading {
        std::uint64_t idleMilliseconds;
        MonotonicInstant at;
    };

    std::optional<Reading> last_;
};

}  // namespace norvane
