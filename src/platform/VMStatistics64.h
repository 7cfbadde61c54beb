#pragma once

#include <cstdint>

namespace norvane {

// Where the memory is, in pages of `HostPort::host_page_size` bytes.
struct VMStatistics64 {
    // Held by the kernel and its drivers; cannot be given to anybody else.
    std::uint64_t wire_count = 0;
    // In use by programs.
    std::uint64_t active_count = 0;
    // RAM that holds compressed pages (not the pages' original size).
    std::uint64_t compressor_page_count = 0;
    // Cached file contents.
    std::uint64_t external_page_count = 0;
    // Kernel caches that go on demand.
    std::uint64_t purgeable_count = 0;
    // Pages ever read from and written to swap devices. Filled only where asked for (`SwapCounters::read`).
    std::uint64_t swapins = 0;
    std::uint64_t swapouts = 0;

    bool operator==(const VMStatistics64&) const = default;
};

}  // namespace norvane
