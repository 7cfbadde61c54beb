#pragma once

namespace norvane {

// Distances in points from the four edges of a rectangle, inward.
struct Insets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;

    static constexpr Insets all(double points) { return {points, points, points, points}; }
    static constexpr Insets horizontal(double points) { return {0, points, 0, points}; }
    static constexpr Insets vertical(double points) { return {points, 0, points, 0}; }

    bool operator==(const Insets&) const = default;
};

}  // namespace norvane
