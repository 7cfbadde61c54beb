#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvane {

// Pages swapped since the start, from /proc/vmstat. Traffic with zram is in them, pages that zswap answered
// from memory are not.
struct VmStat {
    std::uint64_t pswpin = 0;
    std::uint64_t pswpout = 0;

    bool operator==(const VmStat&) const = default;
};

// None where either is missing, as on a kernel without swap.
std::optional<VmStat> parseVmStat(std::string_view text);

}  // namespace norvane
