#pragma once

namespace norvane {

// A place in points. The origin is at the top left; y grows downward.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

}  // namespace norvane
