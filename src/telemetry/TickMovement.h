#pragma once

#include <cstdint>

#include "platform/HostCPULoadInfo.h"

namespace norvane {

// How far a set of tick counters moved between two readings.
struct TickMovement {
    double busy = 0;
    double all = 0;

    double idle() const { return all - busy; }
    // 0 to 100; 0 where nothing moved.
    double busyPercent() const { return all > 0 ? busy / all * 100 : 0; }
};

// The counters wrap at 2^32, so differences are taken modulo 2^32. One of 2^31 or more is a step back, and
// the whole set then counts as not moved: taking only that counter as standing would read as all busy or all
// idle.
TickMovement movementBetween(const HostCPULoadInfo& before, const HostCPULoadInfo& now);

}  // namespace norvane
