#pragma once

#include <cstdint>

namespace norvane {

// Ticks that the whole machine has spent, since it started. They wrap at 2^32.
struct HostCPULoadInfo {
    std::uint32_t user = 0;
    std::uint32_t system = 0;
    std::uint32_t idle = 0;
    std::uint32_t nice = 0;

    bool operator==(const HostCPULoadInfo&) const = default;
};

}  // namespace norvane
