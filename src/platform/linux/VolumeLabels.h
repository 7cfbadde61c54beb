#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "platform/linux/BlockDevices.h"
#include "platform/linux/RootFolder.h"
#include "platform/linux/UdevData.h"

namespace norvane {

// The names that people gave their file systems. For one scan. Any thread, one at a time.
class VolumeLabels {
 public:
    explicit VolumeLabels(RootFolder root);

    // The label of the file system on a device of which the device manager knows `data`: any bytes, never
    // empty.
    std::optional<std::string> label(const BlockDevices::Device& device, const UdevData& data);

 private:
    RootFolder root_;
    // By the device's path; read when first asked for.
    std::optional<std::unordered_map<std::string, std::string>> byPath_;
};

}  // namespace norvane
