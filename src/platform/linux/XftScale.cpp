#include "platform/linux/XftScale.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "platform/linux/KernelText.h"

namespace norvane {
namespace {

constexpr std::string_view kResource = "Xft.dpi";
constexpr std::string_view kResourceBlanks = " \t\r";
constexpr double kPlainDpi = 96;

// The line's value, if it is a line about the wanted resource.
std::optional<std::string_view> valueIn(std::string_view line) {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || trimmed(line.substr(0, colon), kResourceBlanks) != kResource)
        return std::nullopt;
    return trimmed(line.substr(colon + 1), kResourceBlanks);
}

double scaleOf(std::string_view value) {
    double dpi = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), dpi);
    if (error != std::errc{} || end != value.data() + value.size() || !std::isfinite(dpi) || dpi <= 0)
        return 1;
    return std::clamp(dpi / kPlainDpi, 0.5, 8.0);
}

}  // namespace

double scaleFromResources(std::string_view resources) {
    double scale = 1;
    while (!resources.empty()) {
        const auto end = resources.find('\n');
        if (const auto value = valueIn(resources.substr(0, end))) scale = scaleOf(*value);
        if (end == std::string_view::npos) break;
        resources.remove_prefix(end + 1);
    }
    return scale;
}

}  // namespace norvane
