#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>

namespace norvane {

// What happens by chance: for the same seed the same, with every library.
class Chance {
 public:
    explicit Chance(std::uint64_t seed) : engine_(seed) {}

    std::uint64_t below(std::uint64_t count) { return engine_() % count; }
    bool oneIn(std::uint64_t count) { return below(count) == 0; }
    template <typename List>
    auto& oneOf(List& list) {
        return list[below(std::size(list))];
    }
    // The time to the next one of what comes on the average this often, whenever the last one came.
    std::chrono::milliseconds about(std::chrono::milliseconds mean) {
        const double share = static_cast<double>(engine_() >> 11) * 0x1p-53;
        return std::chrono::milliseconds(
            std::llround(-std::log1p(-share) * static_cast<double>(mean.count())));
    }

 private:
    std::mt19937_64 engine_;
};

}  // namespace norvane
