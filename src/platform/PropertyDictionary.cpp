#include "platform/PropertyDictionary.h"

#include <algorithm>

namespace norvane {

const PropertyValue* PropertyDictionary::find(std::string_view name) const {
    const auto found = std::find_if(properties_.begin(), properties_.end(),
                                    [&](const auto& property) { return property.first == name; });
    return found == properties_.end() ? nullptr : &found->second;
}

void PropertyDictionary::set(std::string_view name, PropertyValue value) {
    remove(name);
    properties_.emplace_back(name, std::move(value));
}

void PropertyDictionary::remove(std::string_view name) {
    std::erase_if(properties_, [&](const auto& property) { return property.first == name; });
}

}  // namespace norvane
