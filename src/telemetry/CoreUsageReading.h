#pragma once

#include <vector>

namespace norvane {

// What each core did since the last per-core reading: percentages from 0 to 100.
struct CoreUsageReading {
    // Means of the lists; 0 for an empty list. Every core weighs the same.
    double performanceUsage = 0;
    double efficiencyUsage = 0;
    // In the kernel's order.
    std::vector<double> performanceUsages;
    std::vector<double> efficiencyUsages;
    // Idle ticks over all ticks of all cores.
    double idlePercent = 0;

    bool operator==(const CoreUsageReading&) const = default;
};

}  // namespace norvane
