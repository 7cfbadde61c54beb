#pragma once

namespace norvane {

// One point of the CPU history: percentages from 0 to 100.
struct CPUHistoryPoint {
    // Mean usage of the performance cores.
    double performance = 0;
    // Mean usage of the efficiency cores.
    double efficiency = 0;
    // Usage of the whole machine.
    double total = 0;

    bool operator==(const CPUHistoryPoint&) const = default;
};

}  // namespace norvane
