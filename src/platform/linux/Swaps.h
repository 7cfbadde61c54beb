#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace norvane {

// One line of /proc/swaps.
struct SwapArea {
    // The number of the zram device that it lies on; none for disks, files and everything else.
    std::optional<unsigned> zram;
    std::uint64_t sizeBytes = 0;
    std::uint64_t usedBytes = 0;

    bool operator==(const SwapArea&) const = default;
};

// Replaces what `areas` held, using its memory again. False where the text has no head line, and so is no
// such table; a table without lines means that swap is switched off. Malformed lines are left out.
bool parseSwaps(std::string_view text, std::vector<SwapArea>& areas);

}  // namespace norvane
