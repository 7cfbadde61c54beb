#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace norvane {

class RootFolder;

// Which processors are made for efficiency and which for performance, and the order in which they are shown.
struct CPUTopology {
    struct Level {
        // Cores, and the hardware threads on them.
        std::int64_t physical = 0;
        std::int64_t logical = 0;

        bool operator==(const Level&) const = default;
    };
    struct Levels {
        Level performance;
        Level efficiency;

        bool operator==(const Levels&) const = default;
    };

    // Numbers of all processors: the efficiency ones ascending, then the others ascending. (The kernel's own
    // numbering is mostly the other way round.)
    std::vector<unsigned> order;
    // None where all processors are of one kind.
    std::optional<Levels> levels;
};

// Sorts these processors by what is said of them under /sys. Reads a few files for each, so up to some
// milliseconds in all. Any thread.
CPUTopology readCPUTopology(const RootFolder& root, const std::vector<unsigned>& processors);

}  // namespace norvane
