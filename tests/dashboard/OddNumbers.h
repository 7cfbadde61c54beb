#pragma once

#include <limits>

namespace norvane {

inline constexpr double kInfinite = std::numeric_limits<double>::infinity();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace norvane
