#pragma once

#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// One core's ring, and its number below it.
struct ArdoCoreArc {
    // Percent.
    double usage = 0;
    Paint color = Ink::primary;
    // From 1.
    int index = 1;

    Element body() const;
};

}  // namespace norvane
