#pragma once

#include "platform/linux/ManagerSelection.h"
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
    void follow();
    void read();

    X11Connection& connection_;
    ManagerSelection manager_;
    Published<XSettings> current_;
    Cancellation changes_;
    Cancellation events_;
};

}  // namespace norvane
