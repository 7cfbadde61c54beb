#pragma once

#include <functional>
#include <memory>

#include "platform/linux/X11Connection.h"

namespace norvane {

// One application on a display, by a selection that its first start owns, as the Inter-Client Communication
// Conventions Manual has managers do it. It needs no bus, and each display of a user who has several gets an
// application of its own. Main thread only.
class X11SingleInstance {
 public:
    // Null where the application runs already on this display: it has been told to show itself. The
    // connection outlives the value, and the place is free again when the connection ends.
    static std::unique_ptr<X11SingleInstance> claim(X11Connection& connection);
    ~X11SingleInstance();
    X11SingleInstance(const X11SingleInstance&) = delete;
    X11SingleInstance& operator=(const X11SingleInstance&) = delete;

    // Called from the main loop each time the application was started once more.
    void setReopenHandler(std::function<void()> handler) { reopened_ = std::move(handler); }

 private:
    explicit X11SingleInstance(X11Connection& connection);

    void handle(const xcb_generic_event_t& event);

    X11Connection& connection_;
    xcb_window_t window_;  // never shown
    std::function<void()> reopened_;
    Cancellation events_;
};

}  // namespace norvane
