#pragma once

#include <cstdint>
#include <string>

#include "platform/linux/DeviceNumber.h"

namespace norvane {

// One mount as this process sees it. Texts are as the kernel has them, any bytes but NUL.
struct Mount {
    // Unique among the mounts of a moment; used again after an unmount.
    std::uint64_t id = 0;
    std::uint64_t parentId = 0;
    DeviceNumber device;
    // Which folder of the file system is mounted: "/" for all of it.
    std::string root;
    // Where; begins with "/".
    std::string point;
    // The mount or the whole file system.
    bool isReadOnly = false;
    // "ext4", "fuse.sshfs".
    std::string type;
    // What is mounted, in the words of the file system's type; often a path below "/dev", may be empty.
    std::string source;

    bool operator==(const Mount&) const = default;
};

}  // namespace norvane
