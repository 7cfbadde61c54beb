#pragma once

#include "platform/MonotonicClock.h"

namespace norvane {

// CLOCK_MONOTONIC.
class LinuxMonotonicClock final : public MonotonicClock {
 public:
    MonotonicInstant now() const override;
};

}  // namespace norvane
