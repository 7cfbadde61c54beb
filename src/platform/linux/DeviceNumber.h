#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace norvane {

// By what number the kernel knows a device. File systems that lie on no block device, or on several, have one
// with a major number of 0, which belongs to no device.
struct DeviceNumber {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;

    bool isAnonymous() const { return major == 0; }
    // "8:1".
    std::string text() const { return std::to_string(major) + ':' + std::to_string(minor); }

    bool operator==(const DeviceNumber&) const = default;
};

// "8:1", with blanks and newlines around it.
std::optional<DeviceNumber> parseDeviceNumber(std::string_view text);

}  // namespace norvane
