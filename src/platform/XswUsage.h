#pragma once

#include <cstdint>

namespace norvane {

// Swap on devices, in bytes. Swap that lives in RAM counts as compressed memory, not here.
struct XswUsage {
    std::uint64_t xsu_total = 0;
    std::uint64_t xsu_avail = 0;
    std::uint64_t xsu_used = 0;

    bool operator==(const XswUsage&) const = default;
};

}  // namespace norvane
