#pragma once

#include <cstdint>

namespace norvane {

// The kernel's levels of memory pressure; others may come.
inline constexpr std::int64_t kNormalMemoryPressure = 1;
inline constexpr std::int64_t kWarningMemoryPressure = 2;
inline constexpr std::int64_t kCriticalMemoryPressure = 4;

}  // namespace norvane
