#pragma once

#include <cmath>

#include "drawing/Path.h"

namespace norvane {

// x' = a x + c y + e, y' = b x + d y + f: the order in which drawings write the six numbers.
struct Affine {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double e = 0;
    double f = 0;

    Point operator()(Point p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }

    // First `inner`, then this one.
    Affine after(const Affine& inner) const {
        return {a * inner.a + c * inner.b, b * inner.a + d * inner.b,     a * inner.c + c * inner.d,
                b * inner.c + d * inner.d, a * inner.e + c * inner.f + e, b * inner.e + d * inner.f + f};
    }

    // By how much lengths grow.
    double scale() const { return std::sqrt(std::abs(a * d - b * c)); }

    // Whether circles stay circles: only then has a line one width, and a gradient one direction.
    bool keepsShapes() const {
        const double tolerance = 1e-9 * (std::abs(a) + std::abs(b) + std::abs(c) + std::abs(d));
        const bool turns = std::abs(a - d) <= tolerance && std::abs(b + c) <= tolerance;
        const bool mirrors = std::abs(a + d) <= tolerance && std::abs(b - c) <= tolerance;
        return scale() > 0 && (turns || mirrors);
    }

    Path operator()(Path path) const {
        for (Path::Segment& segment : path.segments) {
            if (auto* move = std::get_if<Path::MoveTo>(&segment)) move->to = (*this)(move->to);
            if (auto* line = std::get_if<Path::LineTo>(&segment)) line->to = (*this)(line->to);
            if (auto* curve = std::get_if<Path::CurveTo>(&segment)) {
                *curve = {(*this)(curve->first), (*this)(curve->second), (*this)(curve->to)};
            }
        }
        return path;
    }
};

}  // namespace norvane
