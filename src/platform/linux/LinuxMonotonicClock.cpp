#include "platform/linux/LinuxMonotonicClock.h"

#include <time.h>

namespace norvane {

MonotonicInstant LinuxMonotonicClock::now() const {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return MonotonicInstant(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

}  // namespace norvane
