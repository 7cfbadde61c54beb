#include "platform/linux/X11WindowServer.h"

#include <utility>

#include "platform/linux/LinuxStatusItem.h"
#include "platform/linux/X11PopoverWindow.h"

namespace norvane {

X11WindowServer::X11WindowServer(X11Connection& connection, BusConnection& sessionBus,
                                 BusConnection& systemBus, TextLayouts& layouts, Appearance& appearance,
                                 const MonotonicClock& clock, MainQueue& mainQueue)
    : screen_(connection),
      sessionBus_(sessionBus),
      lock_(sessionBus, systemBus),
      display_(connection, clock, mainQueue),
      light_(lock_, display_),
      outsidePresses_(connection, ownWindows_),
      keyboard_(connection),
      memory_(layouts, mainQueue),
      desk_{connection,      screen_,   light_,  ownWindows_, accessibleSurfaces_,
            outsidePresses_, keyboard_, layouts, memory_,     appearance,
            clock,           mainQueue},
      accessibility_(sessionBus, mainQueue, clock, accessibleSurfaces_, [this] { return screen_.scale(); }) {}

std::unique_ptr<StatusItem> X11WindowServer::statusItemWithLength(double points) {
    return std::make_unique<LinuxStatusItem>(desk_, sessionBus_, points);
}

std::unique_ptr<PopoverWindow> X11WindowServer::makePopoverWindow(SurfaceContent& content,
                                                                  PopoverWindowObserver& observer) {
    return std::make_unique<X11PopoverWindow>(desk_, content, observer);
}

}  // namespace norvane
