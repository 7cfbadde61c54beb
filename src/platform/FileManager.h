#pragma once

#include <optional>
#include <vector>

#include "platform/TickToken.h"
#include "platform/VolumeURL.h"

namespace norvane {

// The machine's volumes. Asked from the sampler's queue only. The calls return soon, whatever became of a
// server that a volume lies on, and never throw.
class FileManager {
 public:
    virtual ~FileManager() = default;

    // The mounted volumes that people know of, in the order in which they were mounted. No value means that
    // they could not be listed.
    virtual std::optional<std::vector<VolumeURL>> mountedVolumeURLs(TickToken tick) = 0;
};

}  // namespace norvane
