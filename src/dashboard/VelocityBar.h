#pragma once

#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// A bar for a throughput, on a logarithmic scale of two decades: empty at 1 MB/s, full at 100 MB/s. It takes
// the size that it is offered; who it is, its caller tells.
struct VelocityBar {
    // Decimal megabytes a second.
    double speedMBps = 0;
    Paint color = Ink::blue;
    bool useSpring = false;

    // The part that is filled, 0 to 1.
    static double fill(double speedMBps);

    Element body() const;
};

}  // namespace norvane
