#pragma once

#include <chrono>
#include <concepts>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/DefaultsValue.h"
#include "platform/PropertyDictionary.h"
#include "scenario/Json.h"

namespace norvane {

// A value that a scenario gives, under the name by which it is told about: taken as what is needed, or else
// refused with an `Objection`. Valid as long as the JSON that it looks into.
//
// Where a number is wanted, the words "max", "min", "nan", "inf" and "-inf" stand for the extremes of its
// type.
class Given {
 public:
    Given(std::string name, const Json& value) : name_(std::move(name)), value_(&value) {}

    const std::string& name() const { return name_; }
    bool isNull() const { return value_->is_null(); }
    bool isList() const { return value_->is_array(); }
    bool isRecord() const { return value_->is_object(); }
    // Whether it is this text.
    bool says(std::string_view text) const { return value_->is_string() && text == *value_; }

    // An integer in the range, perhaps written as a floating-point number without a fraction. "max" and "min"
    // are the ends of the range.
    template <std::integral Number>
    Number whole(Number least = std::numeric_limits<Number>::min(),
                 Number most = std::numeric_limits<Number>::max()) const;
    double real() const;
    double finite(double least, double most) const;
    bool boolean() const;
    const std::string& text() const;
    // More than nothing.
    std::chrono::nanoseconds duration() const;

    std::vector<Given> items() const;
    // In the order in which they are written.
    std::vector<std::pair<std::string, Given>> members() const;

    // A record whose members are taken by those of `takers` that bear their names. A member that none takes
    // is refused.
    using Taker = std::pair<std::string_view, std::function<void(const Given&)>>;
    void takeMembers(std::initializer_list<Taker> takers) const;

    // The members as properties on top of `properties`; a null takes the property away.
    PropertyDictionary properties(PropertyDictionary properties = {}) const;

    // True or false, a number or a text, as it is written.
    DefaultsValue defaultsValue() const;

    [[noreturn]] void refuse(std::string_view wanted) const;

 private:
    PropertyValue property() const;
    // `isBig`: above what a signed number holds.
    struct Integer {
        std::int64_t value;
        bool isBig;
    };
    Integer integer(const std::string& wanted) const;

    std::string name_;
    const Json* value_;
};

template <std::integral Number>
Number Given::whole(Number least, Number most) const {
    if (says("max")) return most;
    if (says("min")) return least;
    const std::string wanted = "a whole number from " + std::to_string(least) + " to " + std::to_string(most);
    const Integer given = integer(wanted);
    if (given.isBig) {
        const auto large = static_cast<std::uint64_t>(given.value);
        if (!std::in_range<Number>(large) || static_cast<Number>(large) > most) refuse(wanted);
        return static_cast<Number>(large);
    }
    if (!std::in_range<Number>(given.value)) refuse(wanted);
    const auto number = static_cast<Number>(given.value);
    if (number < least || number > most) refuse(wanted);
    return number;
}

}  // namespace norvane
