#pragma once

#include "drawing/Color.h"
#include "drawing/Point.h"

namespace norvane {

// What a shape is filled with: one colour, or two that run into one another along the line from `start` to
// `end` (in the list's points) and stay as they are beyond its ends.
struct Fill {
    Color from;
    Color to;
    Point start;
    Point end;

    Fill() = default;
    Fill(const Color& color) : from(color), to(color) {}  // implicit: a colour is the usual fill
    Fill(const Color& first, const Color& last, Point begin, Point finish)
        : from(first), to(last), start(begin), end(finish) {}

    bool isPlain() const { return from == to; }
    bool isClear() const { return !(from.alpha > 0) && !(to.alpha > 0); }

    bool operator==(const Fill&) const = default;
};

}  // namespace norvane
