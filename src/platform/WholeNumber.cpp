#include "platform/WholeNumber.h"

#include <limits>

namespace norvane {

std::int64_t wholeNumber(double value) {
    // 2^63 is a double, the largest 64-bit integer is not.
    constexpr double kBeyond = 9223372036854775808.0;
    if (value >= kBeyond) return std::numeric_limits<std::int64_t>::max();
    if (value < -kBeyond) return std::numeric_limits<std::int64_t>::min();
    return value == value ? static_cast<std::int64_t>(value) : 0;
}

}  // namespace norvane
