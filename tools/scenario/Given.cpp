#include "scenario/Given.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "scenario/Durations.h"
#include "scenario/Objection.h"

namespace norvane {
namespace {

using Limits = std::numeric_limits<double>;

// What a word means where a floating-point number is wanted.
std::optional<double> extremeOf(std::string_view word) {
    if (word == "nan") return Limits::quiet_NaN();
    if (word == "inf") return Limits::infinity();
    if (word == "-inf") return -Limits::infinity();
    if (word == "max") return Limits::max();
    if (word == "min") return Limits::lowest();
    return std::nullopt;
}

}  // namespace

void Given::refuse(std::string_view wanted) const {
    throw Objection("\"" + name_ + "\" is to be " + std::string(wanted));
}

Given::Integer Given::integer(const std::string& wanted) const {
    constexpr double kSignedEnd = 9'223'372'036'854'775'808.0;  // 2^63
    if (value_->is_number_unsigned()) {
        const auto number = value_->get<std::uint64_t>();
        return {static_cast<std::int64_t>(number), !std::in_range<std::int64_t>(number)};
    }
    if (value_->is_number_integer()) return {value_->get<std::int64_t>(), false};
    if (!value_->is_number_float()) refuse(wanted);
    const auto number = value_->get<double>();
    if (std::trunc(number) != number || !(number >= -kSignedEnd && number < 2 * kSignedEnd)) refuse(wanted);
    if (number < kSignedEnd) return {static_cast<std::int64_t>(number), false};
    return {static_cast<std::int64_t>(static_cast<std::uint64_t>(number)), true};
}

double Given::real() const {
    if (value_->is_number()) return value_->get<double>();
    const auto extreme = value_->is_string() ? extremeOf(text()) : std::nullopt;
    if (!extreme) refuse("a number");
    return *extreme;
}

double Given::finite(double least, double most) const {
    const double number = value_->is_number() ? value_->get<double>() : Limits::quiet_NaN();
    if (!(number >= least && number <= most)) {
        refuse("a number from " + printedJson(least) + " to " + printedJson(most));
    }
    return number;
}

bool Given::boolean() const {
    if (!value_->is_boolean()) refuse("true or false");
    return value_->get<bool>();
}

const std::string& Given::text() const {
    if (!value_->is_string()) refuse("a text");
    return value_->get_ref<const std::string&>();
}

std::chrono::nanoseconds Given::duration() const {
    const auto given = value_->is_string() ? durationOf(text()) : std::nullopt;
    if (!given || given->count() <= 0) refuse("a time such as \"90s\", with ms, s, min or h, at most 10000h");
    return *given;
}

std::vector<Given> Given::items() const {
    if (!value_->is_array()) refuse("a list");
    std::vector<Given> items;
    for (const Json& item : *value_)
        items.emplace_back(name_ + '[' + std::to_string(items.size()) + ']', item);
    return items;
}

std::vector<std::pair<std::string, Given>> Given::members() const {
    if (!value_->is_object()) refuse("an object");
    std::vector<std::pair<std::string, Given>> members;
    for (const auto& [name, value] : value_->items())
        members.emplace_back(name, Given(name_ + '.' + name, value));
    return members;
}

void Given::takeMembers(std::initializer_list<Taker> takers) const {
    for (const auto& [name, given] : members()) {
        const auto taker = std::find_if(takers.begin(), takers.end(),
                                        [&wanted = name](const Taker& one) { return one.first == wanted; });
        if (taker == takers.end()) throw Objection("\"" + given.name() + "\" is not known");
        taker->second(given);
    }
}

PropertyDictionary Given::properties(PropertyDictionary properties) const {
    for (const auto& [name, given] : members()) {
        if (given.isNull()) {
            properties.remove(name);
        } else {
            properties.set(name, given.property());
        }
    }
    return properties;
}

DefaultsValue Given::defaultsValue() const {
    if (value_->is_boolean()) return boolean();
    if (value_->is_number()) return real();
    if (!value_->is_string()) refuse("true or false, a number or a text");
    return text();
}

PropertyValue Given::property() const {
    if (value_->is_boolean()) return boolean();
    if (value_->is_number_float()) return value_->get<double>();
    if (value_->is_number()) {
        const Integer number = integer("");
        if (number.isBig) return value_->get<double>();
        return number.value;
    }
    if (value_->is_object()) return properties();
    if (says("max")) return std::numeric_limits<std::int64_t>::max();
    if (says("min")) return std::numeric_limits<std::int64_t>::min();
    if (!value_->is_string()) refuse("true or false, a number, a text or an object");
    if (const auto extreme = extremeOf(text())) return *extreme;
    return text();
}

}  // namespace norvane
