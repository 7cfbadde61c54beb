#pragma once

#include <array>
#include <string_view>

#include "platform/RawText.h"

namespace norvane {

enum class TemperatureUnit { celsius, fahrenheit };

template <>
inline constexpr std::array<std::string_view, 2> kRawTexts<TemperatureUnit>{"celsius", "fahrenheit"};

}  // namespace norvane
