#pragma once

#include <optional>

namespace norvane {

// The time between two samples of a counter, where a rate can be made of it. A mean over a gap in which
// nobody looked is none, and neither is one over a clock that was set.
class RateInterval {
 public:
    // Seconds; a sample this long after the last one begins anew.
    static constexpr double kTooLong = 5.0;

    // Notes that a sample was taken at `now`, in seconds of the wall clock. Gives the seconds since the one
    // before, above 0 and below `kTooLong`; none for the first sample and where there is no rate.
    std::optional<double> sampled(double now) {
        const double elapsed = now - lastSampleTime_;
        const bool hasRate = lastSampleTime_ > 0 && elapsed > 0 && elapsed < kTooLong;
        lastSampleTime_ = now;
        return hasRate ? std::optional(elapsed) : std::nullopt;
    }

 private:
    double lastSampleTime_ = 0;  // 0 before the first
};

}  // namespace norvane
