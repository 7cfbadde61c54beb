#pragma once

#include <optional>
#include <vector>

#include "platform/TickToken.h"
#include "platform/VolumeURL.h"

namespace norvane {

// The machine's volumes. The calls never throw.
class FileManager {
 public:
    virtual ~FileManager() = default;

    // The mounted volumes that people know of, in the order in which they were mounted. No value means that
    // they could not be listed. Asked from the sampler's queue only; returns soon, whatever became of a
    // server that a volume lies on.
    virtual std::optional<std::vector<VolumeURL>> mountedVolumeURLs(TickToken tick) = 0;

    // The same as they are now, read at once rather than from a lane: it may wait for the devices of this
    // machine, so it is for a background queue. Sizes only of those that may be removable, which are not
    // internal or can be ejected: no server is ever asked. Any thread, several at a time.
    virtual std::optional<std::vector<VolumeURL>> mountedVolumeURLs() = 0;
};

}  // namespace norvane
