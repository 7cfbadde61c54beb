#pragma once

#include "platform/linux/Desk.h"

namespace norvane {

// The keyboard in the hands of a popover's window: asked for once the window is on the screen, given back to
// whoever had it. Focus is asked for and given back with the server's time of the request, so that a choice
// that the user, or the window manager for him, made in between wins. Where the window manager manages the
// window it is the one to give the keyboard on. Main thread only.
class PopoverFocus {
 public:
    explicit PopoverFocus(const Desk& desk) : desk_(desk) {}

    // The keyboard is wanted: at once where the window is on the screen, else as soon as it is.
    void want();
    // Whether the window has it, or is to get it.
    bool isWanted() const { return wants_ || has_; }
    bool has() const { return has_; }

    // The window came onto the screen; the pointer came into it; one of its properties changed.
    void mapped(xcb_window_t window);
    void pointerCame();
    void told(const xcb_property_notify_event_t& event);
    void came(const xcb_focus_in_event_t& event);
    // True where the keyboard has gone to somebody else for good.
    bool left(const xcb_focus_out_event_t& event);

    // The window is about to go: whoever had the keyboard before gets it back.
    void giveBack();

 private:
    void askForTheTime();
    void take(xcb_timestamp_t time);
    bool isUnder(const xcb_query_pointer_reply_t& pointer, xcb_window_t window) const;

    const Desk& desk_;
    xcb_window_t window_ = XCB_NONE;  // while it is on the screen
    bool wants_ = false;
    bool has_ = false;
    xcb_window_t before_ = XCB_INPUT_FOCUS_POINTER_ROOT;
    xcb_timestamp_t time_ = XCB_CURRENT_TIME;
};

}  // namespace norvane
