#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace norvane {

// What the device manager has written down about a block device, in /run/udev/data.
struct UdevData {
    // The label of the file system on it, decoded: any bytes, never empty.
    std::optional<std::string> fileSystemLabel;
    // People are not to be bothered with the device.
    bool isIgnored = false;

    bool operator==(const UdevData&) const = default;
};

UdevData parseUdevData(std::string_view text);

}  // namespace norvane
