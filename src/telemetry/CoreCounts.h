#pragma once

#include <cstdint>

namespace norvane {

// Logical CPUs of each kind, by which per-core readings are split. Computed once, on first need.
struct CoreCounts {
    std::int64_t efficiency = 0;
    std::int64_t performance = 0;
    // The sum of the two.
    std::int64_t total = 0;

    bool operator==(const CoreCounts&) const = default;
};

}  // namespace norvane
