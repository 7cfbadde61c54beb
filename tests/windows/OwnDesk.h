#pragma once

#include "platform/linux/Desk.h"
#include "platform/linux/X11ScreenLight.h"

namespace norvane {

// What a window of ours needs, beside a window server's own. All that is passed in outlives it.
struct OwnDesk {
    OwnDesk(X11Connection& connection, TextLayouts& layouts, Appearance& appearance,
            const MonotonicClock& clock, MainQueue& queue)
        : screen(connection),
          light(connection, clock, queue),
          outsidePresses(connection, ownWindows),
          keyboard(connection),
          memory(layouts, queue),
          desk{connection,     screen,   light,   ownWindows, accessibleSurfaces,
               outsidePresses, keyboard, layouts, memory,     appearance,
               clock,          queue} {}

    X11Screen screen;
    X11ScreenLight light;
    OwnWindows ownWindows;
    AccessibleSurfaces accessibleSurfaces;
    OutsidePresses outsidePresses;
    Keyboard keyboard;
    DrawingMemory memory;
    Desk desk;
};

}  // namespace norvane
