#pragma once

#include <cstdint>

namespace norvane {

// Ticks spent by a processor, or by all together, as the kernel tells them now: they may step back.
struct CPUTicks {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    bool operator==(const CPUTicks&) const = default;
};

}  // namespace norvane
