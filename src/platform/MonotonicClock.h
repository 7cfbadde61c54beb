#pragma once

#include "platform/MonotonicInstant.h"

namespace norvane {

// The time that timers, delays and animations run on. Any thread may ask; never blocks, never fails.
class MonotonicClock {
 public:
    virtual ~MonotonicClock() = default;

    virtual MonotonicInstant now() const = 0;
};

}  // namespace norvane
