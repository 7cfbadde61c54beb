#include "platform/linux/LinuxFileManager.h"

#include <utility>

namespace norvane {

LinuxFileManager::LinuxFileManager(const RootFolder& root, const SystemCalls& calls, ReadBehind& readBehind,
                                   std::unique_ptr<Lane> lane)
    : volumes_(
          readBehind, std::move(lane), &TickReads::volumes,
          [volumes = std::make_shared<Volumes>(root, calls)] { return volumes->read(); }, nullptr,
          [](const auto&, MonotonicInstant) { return true; }) {
    // They are read every thirtieth second at most: an opening that a slow server makes too late for its
    // answer would go without volumes for so long.
    volumes_.askAhead();
}

std::optional<std::vector<VolumeURL>> LinuxFileManager::mountedVolumeURLs(TickToken tick) {
    const auto list = volumes_.get(tick);
    if (!list) return std::nullopt;
    return *list;
}

}  // namespace norvane
