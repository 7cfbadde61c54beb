#pragma once

#include <optional>

namespace norvane {

// The values that a stepper goes through: from `least` to `most`, `step` apart. It comes on to them from any
// other value, in the direction in which it goes.
struct Stepping {
    double least = 0;
    double most = 100;
    double step = 1;

    // The next one above, or below; none where that would leave the range.
    std::optional<double> up(double from) const;
    std::optional<double> down(double from) const;
};

}  // namespace norvane
