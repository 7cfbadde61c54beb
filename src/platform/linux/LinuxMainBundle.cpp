#include "platform/linux/LinuxMainBundle.h"

namespace norvane {

std::optional<PropertyValue> LinuxMainBundle::objectForInfoDictionaryKey(std::string_view key) const {
    if (key != kShortVersion) return std::nullopt;
    return PropertyValue(NORVANE_VERSION);
}

}  // namespace norvane
