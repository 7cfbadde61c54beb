#include "platform/linux/LinuxWallClock.h"

#include <time.h>

namespace norvane {

WallInstant LinuxWallClock::now() const {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return WallInstant(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

}  // namespace norvane
