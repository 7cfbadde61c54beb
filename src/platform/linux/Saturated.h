#pragma once

#include <cstdint>
#include <limits>

namespace norvane {

// Sums and products of counters that come from outside: too large becomes the largest, below 0 becomes 0.
constexpr std::uint64_t saturatedSum(std::uint64_t a, std::uint64_t b) {
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    return a > kMost - b ? kMost : a + b;
}

constexpr std::uint64_t saturatedProduct(std::uint64_t a, std::uint64_t b) {
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    return b != 0 && a > kMost / b ? kMost : a * b;
}

constexpr std::uint64_t saturatedDifference(std::uint64_t a, std::uint64_t b) {
    return a > b ? a - b : 0;
}

}  // namespace norvane
