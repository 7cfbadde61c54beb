#pragma once

#include <optional>
#include <string_view>

#include "platform/PropertyValue.h"

namespace norvane {

// What the program knows of itself, `NSBundle.mainBundle`. Any thread; answers come from memory.
class MainBundle {
 public:
    // The version that people are told, a text.
    static constexpr std::string_view kShortVersion = "CFBundleShortVersionString";

    virtual ~MainBundle() = default;

    // No value for a key that the information dictionary does not have.
    virtual std::optional<PropertyValue> objectForInfoDictionaryKey(std::string_view key) const = 0;
};

}  // namespace norvane
