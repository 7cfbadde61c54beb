#pragma once

#include "drawing/Color.h"
#include "drawing/Point.h"

namespace norvane {

// Two colours that run into one another, in the coordinates of the element that uses them.
struct Gradient {
    Color from;
    Color to;
    Point start;
    Point end;
};

}  // namespace norvane
