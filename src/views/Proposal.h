#pragma once

#include <limits>
#include <optional>

namespace norvane {

// The room that a parent offers, in points. Without a number the child takes what it likes best; an infinite
// one asks how large it would become at most, 0 how small it can be.
struct Proposal {
    std::optional<double> width;
    std::optional<double> height;

    static constexpr double kMost = std::numeric_limits<double>::infinity();

    bool operator==(const Proposal&) const = default;
};

}  // namespace norvane
