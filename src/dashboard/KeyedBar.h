#pragma once

#include <string>

#include "dashboard/ArdoNeonBar.h"
#include "drawing/Font.h"
#include "views/Element.h"

namespace norvane {

// A part of a whole as the panels show it: what it is and how much, the bar, and what the bar's colours stand
// for.
struct KeyedBar {
    std::string label = {};
    std::string value = {};
    Font valueFont = {};
    ArdoNeonBar bar = {};
    // What is filled, and the rest of it.
    std::string filled = {};
    std::string rest = {};

    Element body() const;
};

}  // namespace norvane
