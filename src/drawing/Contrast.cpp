#include "drawing/Contrast.h"

#include <algorithm>
#include <cmath>

namespace norvane {
namespace {

// The relative luminance of the same guidelines.
double luminance(const Color& color) {
    const auto linear = [](double component) {
        return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

}  // namespace

double contrastBetween(const Color& one, const Color& other) {
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

Color laidUpon(const Color& above, const Color& below) {
    const auto mixed = [&](double a, double b) { return a * above.alpha + b * (1 - above.alpha); };
    return {mixed(above.red, below.red), mixed(above.green, below.green), mixed(above.blue, below.blue), 1};
}

}  // namespace norvane
