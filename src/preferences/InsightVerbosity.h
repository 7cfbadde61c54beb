#pragma once

#include <array>
#include <string_view>

#include "platform/RawText.h"

namespace norvane {

// How much the panels explain: headline and explanation, or the headline alone.
enum class InsightVerbosity { detailed, concise };

template <>
inline constexpr std::array<std::string_view, 2> kRawTexts<InsightVerbosity>{"detailed", "concise"};

}  // namespace norvane
