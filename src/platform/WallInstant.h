#pragma once

#include <chrono>

namespace norvane {

// The wall clock's time scale: nanoseconds since 1970-01-01 00:00 UTC. It may jump in either direction.
struct WallTime {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<WallTime>;
    static constexpr bool is_steady = false;
};

using WallInstant = WallTime::time_point;

}  // namespace norvane
