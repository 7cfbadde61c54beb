#pragma once

namespace norvane {

// What only an open dashboard shows of memory: gigabytes of 2^30 bytes, rates in 2^20 bytes a second.
struct MemoryDetail {
    double cachedFilesGB = 0;
    double swapReadMBps = 0;
    double swapWriteMBps = 0;

    bool operator==(const MemoryDetail&) const = default;
};

}  // namespace norvane
