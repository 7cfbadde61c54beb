#pragma once

#include <chrono>

namespace norvane {

// A time scale that never steps and stands still while the machine sleeps. Its zero means nothing.
struct MonotonicTime {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<MonotonicTime>;
    static constexpr bool is_steady = true;
};

using MonotonicInstant = MonotonicTime::time_point;

}  // namespace norvane
