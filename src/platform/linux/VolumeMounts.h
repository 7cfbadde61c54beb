#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/Mount.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

// A mount that people think of as a volume, with what is known of it without asking the file system.
struct VolumeMount {
    Mount mount;
    // Any bytes, never empty; none where the name of the folder has to do.
    std::optional<std::string> name;
    // None where it lies on no block device that the kernel knows of.
    std::optional<bool> isInternal;
    bool isEjectable = false;
};

// What is mounted at one moment.
struct VolumeMounts {
    // One for each file system, in the order of the table.
    std::vector<VolumeMount> volumes;
    // All that a path leads to.
    std::vector<Mount> table;
};

// All that a path leads to. Any thread, waits for nobody; none where there is no table of mounts.
std::optional<std::vector<Mount>> readMounts(const RootFolder& root);

// Any thread; waits for nobody, since none of the mounts is touched. None where there is no table of mounts.
std::optional<VolumeMounts> readVolumeMounts(const RootFolder& root);

}  // namespace norvane
