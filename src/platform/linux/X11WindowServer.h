#pragma once

#include "platform/linux/BusConnection.h"
#include "platform/linux/Desk.h"
#include "platform/linux/LinuxAccessibility.h"
#include "platform/linux/LockedScreenLight.h"
#include "platform/linux/SessionLock.h"
#include "platform/linux/X11ScreenLight.h"
#include "platform/WindowServer.h"

namespace norvane {

// The windows on an X screen. Main thread only. It outlives what it makes.
class X11WindowServer final : public WindowServer {
 public:
    // All parts outlive it.
    X11WindowServer(X11Connection& connection, BusConnection& sessionBus, BusConnection& systemBus,
                    TextLayouts& layouts, Appearance& appearance, const MonotonicClock& clock,
                    MainQueue& mainQueue);

    std::unique_ptr<StatusItem> statusItemWithLength(double points) override;
    std::unique_ptr<PopoverWindow> makePopoverWindow(SurfaceContent& content,
                                                     PopoverWindowObserver& observer) override;

 private:
    X11Screen screen_;
    BusConnection& sessionBus_;
    SessionLock lock_;
    X11ScreenLight display_;
    LockedScreenLight light_;
    OwnWindows ownWindows_;
    AccessibleSurfaces accessibleSurfaces_;
    OutsidePresses outsidePresses_;
    Keyboard keyboard_;
    DrawingMemory memory_;
    Desk desk_;
    LinuxAccessibility accessibility_;
};

}  // namespace norvane
