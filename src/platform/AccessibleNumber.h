#pragma once

namespace norvane {

// The number behind what a node says of itself.
struct AccessibleNumber {
    double now = 0;
    double least = 0;
    double most = 100;
    // From one value to the next; 0 where nobody sets it in steps.
    double step = 0;

    bool operator==(const AccessibleNumber&) const = default;
};

}  // namespace norvane
