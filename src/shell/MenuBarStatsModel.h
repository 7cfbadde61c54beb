#pragma once

#include "platform/Published.h"

namespace norvane {

// What the label in the panel shows. Main thread only.
struct MenuBarStatsModel {
    // 0 to 100.
    Published<double> cpuPercent{0};
    // Gigabytes of 2^30 bytes.
    Published<double> ramUsedGB{0};
    Published<double> ramTotalGB{1.0};
};

}  // namespace norvane
