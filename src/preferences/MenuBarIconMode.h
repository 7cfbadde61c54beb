#pragma once

#include <array>
#include <string_view>

#include "platform/RawText.h"

namespace norvane {

// What the status item shows: an icon of two states, or the label with CPU and memory.
enum class MenuBarIconMode { on, stats };

template <>
inline constexpr std::array<std::string_view, 2> kRawTexts<MenuBarIconMode>{"on", "stats"};

}  // namespace norvane
