#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvane {

// Ticks that each processor has spent, since the machine started. Processor `i` owns the entries from
// `4 * i`: user, system, idle, nice. Efficiency processors come first. The entries wrap as 32-bit numbers.
struct ProcessorInfo {
    static constexpr std::size_t kEntriesPerProcessor = 4;

    std::size_t processorCount = 0;
    std::vector<std::int32_t> ticks;
};

}  // namespace norvane
