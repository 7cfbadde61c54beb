#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/PropertyValue.h"

namespace norvane {

// Properties by name, as the hardware registry and the power sources give them. There are few in each.
class PropertyDictionary {
 public:
    PropertyDictionary() = default;
    // Names that differ.
    PropertyDictionary(std::initializer_list<std::pair<std::string, PropertyValue>> properties)
        : properties_(properties) {}

    // Null where there is none of that name.
    const PropertyValue* find(std::string_view name) const;
    // In the place of an earlier one of that name.
    void set(std::string_view name, PropertyValue value);
    // Does nothing where there is none of that name.
    void remove(std::string_view name);
    std::size_t size() const { return properties_.size(); }

    bool operator==(const PropertyDictionary&) const = default;

 private:
    std::vector<std::pair<std::string, PropertyValue>> properties_;
};

}  // namespace norvane
