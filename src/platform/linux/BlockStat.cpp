#include "platform/linux/BlockStat.h"

#include <array>

#include "platform/linux/KernelText.h"

namespace norvane {

std::optional<BlockStat> parseBlockStat(std::string_view text) {
    // read I/Os, read merges, read sectors, read ticks, write I/Os, write merges, write sectors, …
    std::string_view line = takeLine(text);
    std::array<std::uint64_t, 7> columns{};
    for (std::uint64_t& column : columns) {
        const auto number = takeNumber(line);
        if (!number) return std::nullopt;
        column = *number;
    }
    return BlockStat{columns[2], columns[6]};
}

}  // namespace norvane
