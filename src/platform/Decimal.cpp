#include "platform/Decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace norvane {

std::string decimal(double value, int places) {
    if (std::isnan(value)) return "nan";  // without the sign that some processors give it
    std::array<char, 350> text;           // the largest double has 309 digits before the point
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value,
                                       std::chars_format::fixed, std::clamp(places, 0, 17));
    return {text.data(), written.ptr};
}

}  // namespace norvane
