#pragma once

#include <optional>
#include <string_view>

#include "platform/MainBundle.h"
#include "platform/PropertyDictionary.h"

namespace norvane {

// An information dictionary that a test fills.
class ScriptedMainBundle final : public MainBundle {
 public:
    std::optional<PropertyValue> objectForInfoDictionaryKey(std::string_view key) const override {
        const PropertyValue* const found = information.find(key);
        return found == nullptr ? std::nullopt : std::optional(*found);
    }

    PropertyDictionary information;
};

}  // namespace norvane
