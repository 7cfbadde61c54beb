#include "preferences/StoredValue.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>

namespace norvane {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Whether the text is a decimal number: sign, digits with at most one point, exponent. The library's own
// parsers differ in what else they let pass.
bool isDecimalNumber(std::string_view text) {
    const auto skipSign = [&] {
        if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    };
    const auto skipDigits = [&] {
        const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
        const auto count = static_cast<std::size_t>(end - text.begin());
        text.remove_prefix(count);
        return count;
    };
    skipSign();
    std::size_t digits = skipDigits();
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        digits += skipDigits();
    }
    if (digits == 0) return false;
    if (!text.empty() && (text.front() == 'e' || text.front() == 'E')) {
        text.remove_prefix(1);
        skipSign();
        if (skipDigits() == 0) return false;
    }
    return text.empty();
}

std::optional<double> parsedNumber(const std::string& text) {
    if (!isDecimalNumber(text)) return std::nullopt;
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());  // whatever the user's locale makes of a point
    double number = 0;
    stream >> number;
    // The libraries differ in whether a number that is too small for a double is a failure; one that is too
    // large always is, and becomes the largest.
    const bool isTooLarge = stream.fail() && std::abs(number) == std::numeric_limits<double>::max();
    return isTooLarge ? std::nullopt : std::optional(number);
}

}  // namespace

std::optional<bool> storedBool(const DefaultsValue& value) {
    if (const bool* stored = std::get_if<bool>(&value)) return *stored;
    const auto number = storedNumber(value);
    if (number == 0.0) return false;
    if (number == 1.0) return true;
    return std::nullopt;
}

std::optional<double> storedNumber(const DefaultsValue& value) {
    std::optional<double> number;
    if (const double* stored = std::get_if<double>(&value)) number = *stored;
    if (const std::string* text = std::get_if<std::string>(&value)) number = parsedNumber(*text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::string> storedText(const DefaultsValue& value) {
    const std::string* stored = std::get_if<std::string>(&value);
    return stored == nullptr ? std::nullopt : std::optional(*stored);
}

}  // namespace norvane
