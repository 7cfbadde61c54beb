#include "platform/PropertyValue.h"

#include <cmath>

#include "platform/PropertyDictionary.h"

namespace norvane {

PropertyValue::PropertyValue(PropertyDictionary value)
    : value_(std::make_shared<const PropertyDictionary>(std::move(value))) {}

std::optional<bool> PropertyValue::boolean() const {
    const bool* const value = std::get_if<bool>(&value_);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

std::optional<std::int64_t> PropertyValue::wholeNumber() const {
    if (const auto* const integer = std::get_if<std::int64_t>(&value_)) return *integer;
    const double* const value = std::get_if<double>(&value_);
    constexpr double kEnd = 9'223'372'036'854'775'808.0;  // 2^63, the first that does not fit
    if (value == nullptr || !(*value >= -kEnd && *value < kEnd) || std::trunc(*value) != *value) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(*value);
}

std::optional<double> PropertyValue::number() const {
    if (const auto* const integer = std::get_if<std::int64_t>(&value_)) return static_cast<double>(*integer);
    const double* const value = std::get_if<double>(&value_);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

const std::string* PropertyValue::text() const {
    return std::get_if<std::string>(&value_);
}

const PropertyDictionary* PropertyValue::dictionary() const {
    const auto* const value = std::get_if<std::shared_ptr<const PropertyDictionary>>(&value_);
    return value != nullptr ? value->get() : nullptr;
}

bool PropertyValue::operator==(const PropertyValue& other) const {
    if (dictionary() != nullptr && other.dictionary() != nullptr) return *dictionary() == *other.dictionary();
    return value_ == other.value_;
}

}  // namespace norvane
