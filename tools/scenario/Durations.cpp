#include "scenario/Durations.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

namespace norvane {
namespace {

using namespace std::chrono;

constexpr nanoseconds kLongest = hours(10'000);

// Decimal digits and nothing else, at most nine of them.
std::optional<std::int64_t> digits(std::string_view text) {
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    if (text.empty() || text.size() > 9 || text.front() == '-') return std::nullopt;
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end) return std::nullopt;
    return number;
}

std::string padded(std::int64_t number, std::size_t width) {
    const std::string text = std::to_string(number);
    return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

}  // namespace

std::optional<nanoseconds> durationOf(std::string_view text) {
    constexpr std::pair<std::string_view, nanoseconds> kUnits[] = {
        {"ms", milliseconds(1)}, {"s", seconds(1)}, {"min", minutes(1)}, {"h", hours(1)}};
    const std::size_t unitAt = text.find_first_not_of("0123456789.");
    if (unitAt == std::string_view::npos) return std::nullopt;
    const std::string_view number = text.substr(0, unitAt);
    const std::size_t point = number.find('.');
    const auto whole = digits(number.substr(0, point));
    const std::string_view places = point == std::string_view::npos ? "0" : number.substr(point + 1);
    if (!whole || !digits(places)) return std::nullopt;
    for (const auto& [name, unit] : kUnits) {
        if (text.substr(unitAt) != name) continue;
        if (*whole > kLongest / unit) return std::nullopt;
        // From the last place to the first: the product of all of them with an hour would leave the range.
        nanoseconds part{0};
        for (auto place = places.rbegin(); place != places.rend(); ++place)
            part = (part + unit * (*place - '0')) / 10;
        const nanoseconds duration = unit * *whole + part;
        return duration <= kLongest ? std::optional(duration) : std::nullopt;
    }
    return std::nullopt;
}

std::string elapsedText(nanoseconds elapsed) {
    const std::int64_t thousandths = duration_cast<milliseconds>(elapsed).count();
    const std::int64_t seconds = thousandths / 1000;
    return padded(seconds / 3600, 2) + ':' + padded(seconds / 60 % 60, 2) + ':' + padded(seconds % 60, 2) +
           '.' + padded(thousandths % 1000, 3);
}

std::optional<nanoseconds> elapsedOf(std::string_view text) {
    const std::size_t minutesAt = text.find(':');
    if (minutesAt == std::string_view::npos) return std::nullopt;
    const std::string_view rest = text.substr(minutesAt + 1);
    if (rest.size() < 5 || rest[2] != ':') return std::nullopt;
    const auto hour = digits(text.substr(0, minutesAt));
    const auto minute = digits(rest.substr(0, 2));
    const auto second = durationOf(std::string(rest.substr(3)) + "s");
    if (!hour || !minute || !second || *hour > kLongest / hours(1)) return std::nullopt;
    return hours(*hour) + minutes(*minute) + *second;
}

}  // namespace norvane
