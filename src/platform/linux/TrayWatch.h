#pragma once

#include <functional>

#include "platform/linux/X11Connection.h"
#include "platform/Observers.h"

namespace norvane {

// Whether a panel takes items into a tray, by the System Tray Protocol of freedesktop.org: the one that does
// owns a selection of the screen, and says so to the root when it begins. Main thread only.
class TrayWatch {
 public:
    // The connection outlives the watch.
    explicit TrayWatch(X11Connection& connection);

    // The window that takes the requests of items; XCB_NONE without a tray. From memory.
    xcb_window_t owner() const { return owner_; }
    // Told after it changed. A tray that starts again may well be given the same window id: that is a change
    // too.
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) {
        return changed_.add(std::move(observer));
    }

 private:
    void handle(const xcb_generic_event_t& event);
    void ask(bool hasGone);
    xcb_window_t currentOwner() const;

    X11Connection& connection_;
    xcb_window_t owner_ = XCB_NONE;
    Observers<> changed_;
    Cancellation events_;
    Cancellation ownerEvents_;
};

}  // namespace norvane
