#pragma once

#include "platform/linux/X11Connection.h"
#include "platform/linux/XSettings.h"
#include "platform/Published.h"

namespace norvane {

// What the settings manager of the screen says: the program that owns a selection of the screen, and keeps
// its settings in a property of the window that it owns it with ("XSETTINGS" of freedesktop.org). Nothing
// while there is none. Main thread only.
class X11Settings {
 public:
    // The connection outlives the value.
    explicit X11Settings(X11Connection& connection);

    // Followed as managers come, go, and change their minds.
    const Published<XSettings>& current() const { return current_; }

 private:
    void handle(const xcb_generic_event_t& event);
    void handleOwner(const xcb_generic_event_t& event);
    void findOwner();
    void read();

    X11Connection& connection_;
    xcb_window_t owner_ = XCB_NONE;
    Published<XSettings> current_;
    Cancellation events_;
    Cancellation ownerEvents_;
};

}  // namespace norvane
