#pragma once

#include <algorithm>
#include <array>

#include "drawing/Color.h"
#include "drawing/Point.h"
#include "drawing/Rect.h"
#include "drawing/Size.h"

namespace norvane {

// A type's values as numbers that can be added and scaled, and back. What is between two values, or a little
// beyond one, makes a value as well.
template <typename T>
struct Interpolation;

template <>
struct Interpolation<double> {
    using Numbers = std::array<double, 1>;
    static Numbers numbers(double value) { return {value}; }
    static double value(const Numbers& n) { return n[0]; }
};

template <>
struct Interpolation<Point> {
    using Numbers = std::array<double, 2>;
    static Numbers numbers(Point p) { return {p.x, p.y}; }
    static Point value(const Numbers& n) { return {n[0], n[1]}; }
};

template <>
struct Interpolation<Size> {
    using Numbers = std::array<double, 2>;
    static Numbers numbers(Size s) { return {s.width, s.height}; }
    static Size value(const Numbers& n) { return {std::max(n[0], 0.0), std::max(n[1], 0.0)}; }
};

template <>
struct Interpolation<Rect> {
    using Numbers = std::array<double, 4>;
    static Numbers numbers(const Rect& r) { return {r.origin.x, r.origin.y, r.size.width, r.size.height}; }
    static Rect value(const Numbers& n) { return {{n[0], n[1]}, {std::max(n[2], 0.0), std::max(n[3], 0.0)}}; }
};

// With the opacity multiplied in: a colour that fades from nothing comes up as itself, not out of black.
template <>
struct Interpolation<Color> {
    using Numbers = std::array<double, 4>;
    static Numbers numbers(const Color& c) {
        return {c.red * c.alpha, c.green * c.alpha, c.blue * c.alpha, c.alpha};
    }
    static Color value(const Numbers& n) {
        const double alpha = std::clamp(n[3], 0.0, 1.0);
        if (!(alpha > 0)) return Color::clear();
        const auto component = [&](double multiplied) { return std::clamp(multiplied / n[3], 0.0, 1.0); };
        return {component(n[0]), component(n[1]), component(n[2]), alpha};
    }
};

}  // namespace norvane
