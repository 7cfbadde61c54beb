#pragma once

#include "drawing/Point.h"

namespace norvane {

// A part of a circle's line. It is measured in turns from the top, clockwise: 0.25 is to the right. What goes
// over one turn is drawn to one turn; where `to` is not beyond `from` there is nothing.
struct Arc {
    Point center;
    double radius = 0;
    double from = 0;
    double to = 1;

    bool operator==(const Arc&) const = default;
};

}  // namespace norvane
