#pragma once

#include <algorithm>

#include "platform/linux/Deadline.h"

namespace norvane {

// When something that repeats is due: on a grid of instants that lie `interval` apart.
class RepeatingDeadline {
 public:
    constexpr RepeatingDeadline(MonotonicInstant first, std::chrono::nanoseconds interval)
        : next_(first), interval_(std::max(interval, std::chrono::nanoseconds{1})) {}

    constexpr MonotonicInstant next() const { return next_; }

    // Says that it happened at `now`, which stands for every instant of the grid up to then.
    constexpr void fire(MonotonicInstant now) {
        const auto missed = std::max(now, next_) - next_;
        next_ = deadlineAfter(next_ + missed / interval_ * interval_, interval_);
    }

 private:
    MonotonicInstant next_;
    std::chrono::nanoseconds interval_;
};

}  // namespace norvane
