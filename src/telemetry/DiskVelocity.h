#pragma once

namespace norvane {

// How fast all drives together read and write, in megabytes (2^20 bytes) a second; at least 0.
struct DiskVelocity {
    double readMBps = 0;
    double writeMBps = 0;

    bool operator==(const DiskVelocity&) const = default;
};

}  // namespace norvane
