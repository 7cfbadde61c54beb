#pragma once

#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// A bar for a part of a whole, with a glow that breathes. It takes the size that it is offered; who it is,
// its caller tells.
struct ArdoNeonBar {
    double value = 0;
    double total = 0;
    Paint color = Ink::green;
    bool useSpring = false;

    // The part that is filled, 0 to 1; nothing of a whole that is none.
    static double ratio(double value, double total);

    Element body() const;
};

}  // namespace norvane
