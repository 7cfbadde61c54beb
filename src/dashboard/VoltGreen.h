#pragma once

#include "drawing/Color.h"

namespace norvane {

// The product's own green. Every other colour of the dashboard is an ink.
struct VoltGreen {
    // Tint of the settings panel's controls.
    static constexpr Color settings{0.0, 0.85, 0.45, 1.0};
    // The welcome screen stands on black and takes a brighter one.
    static constexpr Color welcome{0.0, 1.0, 0.45, 1.0};
};

}  // namespace norvane
