#pragma once

#include <optional>
#include <vector>

#include "platform/linux/RootFolder.h"
#include "platform/linux/SystemCalls.h"
#include "platform/VolumeURL.h"

namespace norvane {

// The mounted file systems that people think of as volumes. Asking a file system for its size may wait for a
// device or a server, so this belongs on a lane.
class Volumes {
 public:
    Volumes(RootFolder root, SystemCalls calls);

    // In the order of the mount table. No value where that cannot be read.
    std::optional<std::vector<VolumeURL>> read();

 private:
    RootFolder root_;
    SystemCalls calls_;
};

}  // namespace norvane
