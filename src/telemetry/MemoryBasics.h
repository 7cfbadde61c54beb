#pragma once

namespace norvane {

// Where the memory is, in gigabytes of 2^30 bytes.
struct MemoryBasics {
    double total = 0;
    // Wired, app and compressed memory together; neither cached files nor swap.
    double used = 0;
    double wired = 0;
    double compressed = 0;
    double app = 0;
    double swap = 0;

    bool operator==(const MemoryBasics&) const = default;
};

}  // namespace norvane
