#include "views/Stepping.h"

#include <algorithm>
#include <cmath>

namespace norvane {
namespace {

// In steps: a value that misses its place by a rounding error is in it.
constexpr double kSlack = 1e-6;

bool isUsable(const Stepping& stepping) {
    return std::isfinite(stepping.least) && std::isfinite(stepping.most) && std::isfinite(stepping.step) &&
           stepping.step > 0 && stepping.least <= stepping.most;
}

}  // namespace

std::optional<double> Stepping::up(double from) const {
    if (!isUsable(*this) || std::isnan(from)) return std::nullopt;
    // From below the range into it.
    const double places = std::max(std::floor((from - least) / step + kSlack) + 1, 0.0);
    const double next = least + places * step;
    if (!(next <= most + kSlack * step)) return std::nullopt;
    return std::min(next, most);
}

std::optional<double> Stepping::down(double from) const {
    if (!isUsable(*this) || std::isnan(from)) return std::nullopt;
    // From above the range into it.
    const double last = std::floor((most - least) / step + kSlack);
    const double places = std::min(std::ceil((from - least) / step - kSlack) - 1, last);
    if (!(places >= 0)) return std::nullopt;
    return std::min(least + places * step, most);
}

}  // namespace norvane
