#include "platform/linux/DeviceNumber.h"

#include <limits>

#include "platform/linux/KernelText.h"

namespace norvane {

std::optional<DeviceNumber> parseDeviceNumber(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    const auto major = parseNumber(text.substr(0, colon));
    const auto minor = parseNumber(text.substr(colon + 1));
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
    if (!major || !minor || *major > kMost || *minor > kMost) return std::nullopt;
    return DeviceNumber{static_cast<std::uint32_t>(*major), static_cast<std::uint32_t>(*minor)};
}

}  // namespace norvane
