#pragma once

#include <string_view>
#include <vector>

#include "platform/linux/Mount.h"

namespace norvane {

// The mounts in the text of /proc/self/mountinfo ("The /proc Filesystem" in the kernel's documentation), in
// its order, without those that no path leads to any more because others were mounted over them. Lines that
// are no mounts are skipped.
std::vector<Mount> parseMountInfo(std::string_view text);

}  // namespace norvane
