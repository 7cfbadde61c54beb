#pragma once

#include <variant>
#include <vector>

#include "drawing/Point.h"

namespace norvane {

// An outline of straight lines and cubic curves, in points.
struct Path {
    struct MoveTo {
        Point to;
        bool operator==(const MoveTo&) const = default;
    };
    struct LineTo {
        Point to;
        bool operator==(const LineTo&) const = default;
    };
    struct CurveTo {
        Point first;  // control points
        Point second;
        Point to;
        bool operator==(const CurveTo&) const = default;
    };
    // Back to the last `MoveTo`.
    struct Close {
        bool operator==(const Close&) const = default;
    };
    using Segment = std::variant<MoveTo, LineTo, CurveTo, Close>;

    std::vector<Segment> segments;

    bool operator==(const Path&) const = default;
};

}  // namespace norvane
