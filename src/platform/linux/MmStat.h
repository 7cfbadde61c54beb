#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvane {

// Bytes of memory that a zram device occupies, from its `mm_stat` ("zram: Compressed RAM-based block devices"
// in the kernel's documentation): the compressed data, the allocator's losses and the device's own records.
std::optional<std::uint64_t> parseMmStat(std::string_view text);

}  // namespace norvane
