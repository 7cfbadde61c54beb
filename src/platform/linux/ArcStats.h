#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvane {

// The cache of ZFS, from its `arcstats`. The kernel doesn't know that this memory can be had, so it is
// missing from `MemAvailable`.
struct ArcStats {
    // What the cache holds now, and the least that it keeps under pressure; bytes. (Its target size `c` is
    // only where it is heading.)
    std::uint64_t size = 0;
    std::uint64_t cMin = 0;

    bool operator==(const ArcStats&) const = default;
};

// None where either is missing.
std::optional<ArcStats> parseArcStats(std::string_view text);

}  // namespace norvane
