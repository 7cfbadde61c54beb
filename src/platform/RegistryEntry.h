#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "platform/PropertyDictionary.h"

namespace norvane {

// A service of the hardware registry, with its properties as they were when it was matched. It is a value:
// nothing of the machine is held by it, so there is nothing to release.
class RegistryEntry {
 public:
    // One whose properties can be read.
    explicit RegistryEntry(PropertyDictionary properties)
        : properties_(std::make_shared<const PropertyDictionary>(std::move(properties))) {}
    // One whose properties cannot.
    static RegistryEntry unreadable() { return RegistryEntry(); }

    // Null where the properties cannot be read. Valid as long as the entry.
    const PropertyDictionary* IORegistryEntryCreateCFProperties() const { return properties_.get(); }
    // Null, too, where there is none of that name.
    const PropertyValue* IORegistryEntryCreateCFProperty(std::string_view name) const {
        return properties_ ? properties_->find(name) : nullptr;
    }

    bool operator==(const RegistryEntry& other) const {
        return properties_ && other.properties_ ? *properties_ == *other.properties_
                                                : properties_ == other.properties_;
    }

 private:
    RegistryEntry() = default;

    std::shared_ptr<const PropertyDictionary> properties_;
};

}  // namespace norvane
