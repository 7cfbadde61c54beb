#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/BlockingLaneWaiter.h"
#include "platform/linux/FileSystemSpaces.h"
#include "platform/linux/LaneWaiter.h"
#include "platform/linux/RootFolder.h"
#include "platform/linux/SystemCalls.h"
#include "platform/linux/VolumeMounts.h"
#include "platform/VolumeURL.h"

namespace norvane {

// The mounted file systems that people think of as volumes, and how large they are. Asking for that may wait
// for servers for a while, so this belongs on a lane.
class Volumes {
 public:
    using List = std::vector<VolumeURL>;

    // `waiter` is how a reading waits for servers.
    Volumes(RootFolder root, SystemCalls calls,
            std::shared_ptr<LaneWaiter> waiter = std::make_shared<BlockingLaneWaiter>());

    // In the order of the mount table, never changed again; null where that cannot be read. A volume whose
    // file system does not tell its size has no values, and one whose server has not answered for long is
    // left out.
    std::shared_ptr<const List> read();

    // The same without waiting for any server: sizes only of those that are not internal or can be ejected.
    // Any thread, several at a time, also beside `read`.
    std::optional<List> readRemovable() const;

 private:
    class ServedFolders;

    std::optional<FileSystemSpace> spaceOf(const Mount& mount, const ServedFolders& served) const;

    RootFolder root_;
    SystemCalls calls_;
    FileSystemSpaces servers_;
};

}  // namespace norvane
