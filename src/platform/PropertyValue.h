#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace norvane {

class PropertyDictionary;

// One property of a device or a power source. It comes from outside, so that it may be of any type; each
// reader takes it as what it needs and gets nothing where it is something else.
class PropertyValue {
 public:
    // Implicit, so that a property is written as what it is.
    PropertyValue(bool value) : value_(value) {}
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) PropertyValue(Number value)
        : value_(static_cast<std::int64_t>(value)) {}
    PropertyValue(double value) : value_(value) {}
    PropertyValue(std::string value) : value_(std::move(value)) {}
    PropertyValue(const char* value) : value_(std::string(value)) {}
    PropertyValue(PropertyDictionary value);

    // A Boolean and nothing else.
    std::optional<bool> boolean() const;
    // An integer, or a floating-point number without a fraction that fits.
    std::optional<std::int64_t> wholeNumber() const;
    // Any number; not a Boolean.
    std::optional<double> number() const;
    // Null where it is no text.
    const std::string* text() const;
    // Null where it is no dictionary.
    const PropertyDictionary* dictionary() const;

    bool operator==(const PropertyValue& other) const;

 private:
    std::variant<bool, std::int64_t, double, std::string, std::shared_ptr<const PropertyDictionary>> value_;
};

}  // namespace norvane
