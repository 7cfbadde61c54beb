#pragma once

#include <functional>

#include "platform/linux/X11Connection.h"
#include "platform/Observers.h"

namespace norvane {

// Who does something for all programs of a screen: that one owns a selection of the screen, and says so to
// the root when it begins ("MANAGER" of the ICCCM). Trays and settings managers are found so. Main thread
// only.
class ManagerSelection {
 public:
    // The connection outlives the value.
    ManagerSelection(X11Connection& connection, xcb_atom_t selection);

    // The window that it owns the selection with; XCB_NONE without one. From memory.
    xcb_window_t owner() const { return owner_; }
    // Told after it changed. One that starts again may well be given the same window id: that is a change
    // too.
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) {
        return changed_.add(std::move(observer));
    }

 private:
    void handle(const xcb_generic_event_t& event);
    void ask(bool hasGone);
    xcb_window_t currentOwner() const;

    X11Connection& connection_;
    const xcb_atom_t selection_;
    xcb_window_t owner_ = XCB_NONE;
    Observers<> changed_;
    Cancellation events_;
    Cancellation ownerEvents_;
};

}  // namespace norvane
