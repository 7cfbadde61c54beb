#pragma once

#include <functional>

#include "drawing/Point.h"
#include "platform/KeyEvent.h"

namespace norvane {

// What a part of a screen does when it is pointed at, pressed or typed to. Any of it may be empty.
struct Interaction {
    // On release where it was pressed; by Space and Return when it has the keyboard.
    std::function<void()> action;
    std::function<void(bool isOver)> onHover;
    // Whether the key meant something here. What takes the focus is asked only while it has it.
    std::function<bool(KeyEvent::Key key)> onKey;
    // How far its contents are to move up and to the left, in points; whether they could.
    std::function<bool(Point by)> onScroll;
    // The same upwards alone, from where they stood in the last picture, whatever has been asked since.
    std::function<void(double by)> onReveal;
    // Tab stops here.
    bool takesFocus = false;
};

}  // namespace norvane
