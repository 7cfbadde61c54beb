#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/FileManager.h"
#include "platform/linux/SlowReading.h"
#include "platform/linux/Volumes.h"

namespace norvane {

// The mounted volumes, for a tick read on a lane. A call without one may outlive this.
class LinuxFileManager final : public FileManager {
 public:
    // The reference outlives this.
    LinuxFileManager(const RootFolder& root, const SystemCalls& calls, ReadBehind& readBehind,
                     std::unique_ptr<Lane> lane);

    std::optional<std::vector<VolumeURL>> mountedVolumeURLs(TickToken tick) override;
    std::optional<std::vector<VolumeURL>> mountedVolumeURLs() override;

 private:
    const std::shared_ptr<Volumes> reader_;
    SlowReading<std::shared_ptr<const Volumes::List>> volumes_;
};

}  // namespace norvane
