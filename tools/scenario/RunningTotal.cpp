#include "scenario/RunningTotal.h"

#include <chrono>
#include <limits>

namespace norvane {

double RunningTotal::grown() const {
    return grownUntilThen_ + rate_ * std::chrono::duration<double>(time_.monotonic() - countedUntil_).count();
}

void RunningTotal::setRate(double perSecond) {
    grownUntilThen_ = grown();
    countedUntil_ = time_.monotonic();
    rate_ = perSecond;
}

void RunningTotal::set(std::uint64_t total) {
    base_ = total;
    grownUntilThen_ = rate_ = 0;
    countedUntil_ = time_.monotonic();
}

std::uint64_t RunningTotal::total() const {
    constexpr std::uint64_t kEnd = std::numeric_limits<std::uint64_t>::max();
    const double more = grown();
    if (more >= static_cast<double>(kEnd - base_)) return kEnd;
    return base_ + static_cast<std::uint64_t>(more);
}

}  // namespace norvane
