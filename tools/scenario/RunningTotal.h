#pragma once

#include <cstdint>

#include "platform/scripted/ScriptedTime.h"

namespace norvane {

// A counter that grows at a steady rate while the machine runs. It ends at 2^64 - 1.
class RunningTotal {
 public:
    explicit RunningTotal(const ScriptedTime& time) : time_(time), countedUntil_(time.monotonic()) {}

    // From now on; finite and at least 0.
    void setRate(double perSecond);
    // The counter as it is now; it stands still until a rate is set.
    void set(std::uint64_t total);
    std::uint64_t total() const;

 private:
    double grown() const;

    const ScriptedTime& time_;
    MonotonicInstant countedUntil_;
    std::uint64_t base_ = 0;
    // What the counter had grown beyond `base_` by then.
    double grownUntilThen_ = 0;
    double rate_ = 0;
};

}  // namespace norvane
