#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace norvane {

// "90s", "1.5h", "200ms", "10min": a decimal number with its unit, at most 10,000 hours. No value for
// anything else.
std::optional<std::chrono::nanoseconds> durationOf(std::string_view text);

// "00:03:12.000": hours, minutes, seconds and thousandths, cut. Hours go on beyond 99.
std::string elapsedText(std::chrono::nanoseconds elapsed);
// The reverse; the thousandths may be left out. No value for anything else.
std::optional<std::chrono::nanoseconds> elapsedOf(std::string_view text);

}  // namespace norvane
