#include "platform/linux/LinuxFileManager.h"

#include <new>
#include <utility>

namespace norvane {

LinuxFileManager::LinuxFileManager(const RootFolder& root, const SystemCalls& calls, ReadBehind& readBehind,
                                   std::unique_ptr<Lane> lane)
    : reader_(std::make_shared<Volumes>(root, calls)),
      volumes_(
          readBehind, std::move(lane), &TickReads::volumes, [reader = reader_] { return reader->read(); },
          nullptr, [](const auto&, MonotonicInstant) { return true; }) {
    // They are read every thirtieth second at most: an opening that a slow server makes too late for its
    // answer would go without volumes for so long.
    volumes_.askAhead();
}

std::optional<std::vector<VolumeURL>> LinuxFileManager::mountedVolumeURLs(TickToken tick) {
    const auto list = volumes_.get(tick);
    if (!list) return std::nullopt;
    return *list;
}

std::optional<std::vector<VolumeURL>> LinuxFileManager::mountedVolumeURLs() {
    const auto reader = reader_;
    try {
        return reader->readRemovable();
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

}  // namespace norvane
