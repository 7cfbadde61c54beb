#pragma once

#include <optional>
#include <string_view>

#include "platform/MainBundle.h"

namespace norvane {

// What the build has put into the program: its version, and nothing else.
class LinuxMainBundle final : public MainBundle {
 public:
    std::optional<PropertyValue> objectForInfoDictionaryKey(std::string_view key) const override;
};

}  // namespace norvane
