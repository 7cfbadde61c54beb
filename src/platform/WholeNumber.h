#pragma once

#include <cstdint>

namespace norvane {

// The number cut towards zero. What lies outside of the range of the type becomes its nearest end, and what
// is not a number becomes 0.
std::int64_t wholeNumber(double value);

}  // namespace norvane
