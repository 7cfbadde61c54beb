#pragma once

#include <chrono>

#include "platform/MonotonicInstant.h"

namespace norvane {

// The instant `delay` after `now`: `now` itself for a delay below zero, the end of time where it would lie
// beyond.
constexpr MonotonicInstant deadlineAfter(MonotonicInstant now, std::chrono::nanoseconds delay) {
    if (delay <= std::chrono::nanoseconds::zero()) return now;
    return delay > MonotonicInstant::max() - now ? MonotonicInstant::max() : now + delay;
}

// The same instant for the waits of the standard library, whose steady clock is CLOCK_MONOTONIC here too.
constexpr std::chrono::steady_clock::time_point steadyTime(MonotonicInstant instant) {
    return std::chrono::steady_clock::time_point(instant.time_since_epoch());
}

}  // namespace norvane
