#include "platform/linux/LinuxFileManager.h"

#include <utility>

namespace norvane {

LinuxFileManager::LinuxFileManager(const RootFolder& root, const SystemCalls& calls, ReadBehind& readBehind,
                                   std::unique_ptr<Lane> lane)
    : volumes_(
          readBehind, std::move(lane), &TickReads::volumes,
          [volumes = std::make_shared<Volumes>(root, calls)] { return volumes->read(); }, std::nullopt,
          [](const auto&, MonotonicInstant) { return true; }) {}

std::optional<std::vector<VolumeURL>> LinuxFileManager::mountedVolumeURLs(TickToken tick) {
    return volumes_.get(tick);
}

}  // namespace norvane
