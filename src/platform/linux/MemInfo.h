#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvane {

// The lines of /proc/meminfo that we use, in bytes (proc_meminfo(5); its "kB" are 1024 bytes). A line that is
// missing or malformed has no value, which is not the same as a value of 0.
struct MemInfo {
    using Bytes = std::optional<std::uint64_t>;

    Bytes memTotal;
    Bytes memFree;
    Bytes memAvailable;
    Bytes buffers;
    Bytes cached;
    Bytes swapTotal;
    Bytes swapFree;
    // What the compressed pages of zswap take up, and what they would without compression.
    Bytes zswap;
    Bytes zswapped;
    Bytes anonPages;
    Bytes shmem;
    Bytes kReclaimable;
    Bytes sReclaimable;
};

// Unknown lines are skipped. Of a repeated line, the first counts.
MemInfo parseMemInfo(std::string_view text);

}  // namespace norvane
