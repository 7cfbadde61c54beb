#pragma once

#include "platform/Appearance.h"
#include "platform/linux/AccessibleSurfaces.h"
#include "platform/linux/DrawingMemory.h"
#include "platform/linux/Keyboard.h"
#include "platform/linux/OutsidePresses.h"
#include "platform/linux/OwnWindows.h"
#include "platform/linux/ScreenLight.h"
#include "platform/linux/TextLayouts.h"
#include "platform/linux/X11Connection.h"
#include "platform/linux/X11Screen.h"
#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"

namespace norvane {

// What every window of ours needs. All parts outlive the windows.
struct Desk {
    X11Connection& connection;
    X11Screen& screen;
    ScreenLight& light;
    OwnWindows& ownWindows;
    AccessibleSurfaces& accessibleSurfaces;
    OutsidePresses& outsidePresses;
    Keyboard& keyboard;
    TextLayouts& layouts;
    DrawingMemory& memory;
    Appearance& appearance;
    const MonotonicClock& clock;
    MainQueue& mainQueue;
};

}  // namespace norvane
