#pragma once

#include <functional>
#include <string>

#include "views/Element.h"
#include "views/Stepping.h"

namespace norvane {

struct StepperOptions {
    // What the number is, and how it is written, for those who do not see it.
    std::string name = {};
    std::string valueText = {};
    Stepping stepping = {};
};

// Two small buttons, minus and plus, for a number that goes up and down in steps; the side on which the range
// ends is inactive. Tab stops at the pair, where Up and Down go on. The number itself is shown beside it.
Element stepper(const StepperOptions& options, double value, std::function<void(double value)> changed);

}  // namespace norvane
