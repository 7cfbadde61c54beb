#pragma once

namespace norvane {

// A colour in sRGB, components and opacity from 0 to 1, not premultiplied.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    constexpr Color withOpacity(double opacity) const { return {red, green, blue, alpha * opacity}; }
    static constexpr Color clear() { return {0, 0, 0, 0}; }
    static constexpr Color black() { return {0, 0, 0, 1}; }
    static constexpr Color white() { return {1, 1, 1, 1}; }

    bool operator==(const Color&) const = default;
};

}  // namespace norvane
