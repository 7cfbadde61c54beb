#include "platform/linux/VolumeLabels.h"

#include <algorithm>
#include <utility>

#include "platform/linux/EscapedText.h"

namespace norvane {

VolumeLabels::VolumeLabels(RootFolder root) : root_(std::move(root)) {}

std::optional<std::string> VolumeLabels::label(const BlockDevices::Device& device, const UdevData& data) {
    if (data.fileSystemLabel) return data.fileSystemLabel;
    if (device.folder.empty()) return std::nullopt;
    if (!byPath_) {
        byPath_.emplace();
        const std::string folder = "/dev/disk/by-label/";
        for (const std::string& name : root_.names(folder)) {
            if (auto path = BlockDevices::linkTarget(root_, folder + name)) {
                byPath_->emplace(std::move(*path), decodedHex(name));
            }
        }
    }
    std::string name = device.name();
    std::replace(name.begin(), name.end(), '!', '/');
    const auto found = byPath_->find("/dev/" + name);
    if (found == byPath_->end()) return std::nullopt;
    return found->second;
}

}  // namespace norvane
