#pragma once

#include <string>
#include <string_view>

#include "platform/RegistryEntry.h"

namespace norvane {

// A property as text: "true", "5", "Normal"; "none" where it is missing, "?" where it is something else.
inline std::string propertyText(const PropertyValue* value) {
    if (value == nullptr) return "none";
    if (const auto boolean = value->boolean()) return *boolean ? "true" : "false";
    if (const auto number = value->wholeNumber()) return std::to_string(*number);
    return value->text() != nullptr ? *value->text() : "?";
}

// One of those that a service has in a dictionary of its own.
inline std::string propertyText(const RegistryEntry& service, std::string_view dictionary,
                                std::string_view name) {
    const PropertyValue* const value = service.IORegistryEntryCreateCFProperty(dictionary);
    const bool isDictionary = value != nullptr && value->dictionary() != nullptr;
    return propertyText(isDictionary ? value->dictionary()->find(name) : nullptr);
}

}  // namespace norvane
