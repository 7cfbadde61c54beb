#pragma once

#include <cstdint>
#include <optional>

#include "platform/linux/ArcStats.h"
#include "platform/linux/MemInfo.h"

namespace norvane {

// Where the memory is, in bytes; a conclusion from one reading.
//
// What counts as used is all that programs could not get: the total less `available`. It is divided into
// `compressed`, `programs` and the rest, `wired`: kernel, drivers, page tables, huge-page pool, reserves.
// Adding up what the kernel lists for itself would miss the pages that drivers take directly, often
// gigabytes; the rest cannot miss any. The three always sum up to `used()`.
struct MemoryFigures {
    std::uint64_t total = 0;
    // What programs could get without swapping, the cache of ZFS included; at most `total`.
    std::uint64_t available = 0;

    // Memory that holds compressed pages; not the pages' original size.
    std::uint64_t compressed = 0;
    // Anonymous and shared memory.
    std::uint64_t programs = 0;
    std::uint64_t wired = 0;

    // Contents of files, which can be dropped (shared memory cannot).
    std::uint64_t fileCache = 0;
    // Caches of the kernel that go on demand.
    std::uint64_t purgeable = 0;

    // Slots for swapped pages, whatever backs them.
    std::uint64_t swapTotal = 0;
    std::uint64_t swapFree = 0;

    std::uint64_t used() const { return total - available; }

    bool operator==(const MemoryFigures&) const = default;
};

// `zramBytes` is what the zram devices used for swap occupy. Such a device without swap on it is a driver's
// memory like any other. None without a total above 0.
std::optional<MemoryFigures> memoryFigures(const MemInfo& info, const std::optional<ArcStats>& arc,
                                           std::uint64_t zramBytes);

}  // namespace norvane
