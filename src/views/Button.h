#pragma once

#include <functional>
#include <string>

#include "drawing/Color.h"
#include "views/Element.h"

namespace norvane {

struct ButtonOptions {
    // Of the ring around it while it has the keyboard, in points.
    double radius = 4;
    // Otherwise it is dimmed and cannot be pressed.
    bool isEnabled = true;
    // Tab stops at it.
    bool takesFocus = true;
    // It is dimmed while it is held down.
    bool dimsWhileHeld = true;
};

// A plain button: its label, which does something when it is pressed. `told` says what it is to those who
// cannot see.
Element button(Accessible told, Element label, std::function<void()> action,
               const ButtonOptions& options = {});
// The same by its name alone.
Element button(std::string name, Element label, std::function<void()> action,
               const ButtonOptions& options = {});

// A large button that stands out in its tint, with a label at least so wide in points, in black or white,
// whichever reads better.
Element prominentButton(std::string label, double minLabelWidth, const Color& tint,
                        std::function<void()> action);

}  // namespace norvane
