#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvane {

// Traffic of a block device since it was set up, in sectors of 512 bytes whatever its own sectors are, from
// its `stat` ("Block layer statistics in /sys/block/<dev>/stat" in the kernel's documentation).
struct BlockStat {
    static constexpr std::uint64_t kSectorBytes = 512;

    std::uint64_t sectorsRead = 0;
    std::uint64_t sectorsWritten = 0;

    bool operator==(const BlockStat&) const = default;
};

std::optional<BlockStat> parseBlockStat(std::string_view text);

}  // namespace norvane
