#pragma once

#include <cstdint>
#include <vector>

#include "telemetry/SystemSnapshot.h"
#include "views/Paint.h"

namespace norvane {

// One entry of the grid of cores.
struct CoreItem {
    // From 0 over all cores: who it is in the grid.
    std::int64_t id = 0;
    // Percent.
    double usage = 0;
    Ink color = Ink::primary;
    // From 1: the number that is shown.
    std::int64_t index = 1;

    bool operator==(const CoreItem&) const = default;
};

// The efficiency cores, then the performance cores, numbered through.
std::vector<CoreItem> coreItems(const SystemSnapshot& snapshot);

// The colours of the two clusters.
inline constexpr Ink kEfficiencyInk = Ink::blue;
inline constexpr Ink kPerformanceInk = Ink::purple;

}  // namespace norvane
