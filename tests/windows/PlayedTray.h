#pragma once

#include "Bystander.h"

namespace norvane {

// A panel with a tray, another program on the same screen, that does with its
// items what it is told to. It dies when destroyed.
class PlayedTray {
 public:
    // Where the panel is, on the screen.
    static constexpr PixelRect kPanel{200, 300, 400, 40};

    // A visual that items may have, if any.
    explicit PlayedTray(const std::string& display, xcb_visualid_t visual = XCB_NONE);

    xcb_window_t window() const { return owner_; }
    Bystander& program() { return program_; }

    // The window that has asked to be taken in; XCB_NONE until one has.
    xcb_window_t asking();
    // Takes it into the panel, in that part of it.
    void embed(xcb_window_t item, const PixelRect& part);
    // Gives it another part of the panel.
    void give(xcb_window_t item, const PixelRect& part);
    // Lets go of it.
    void dismiss(xcb_window_t item);
    // Moves the whole panel.
    void slide(int x, int y);
    // The tray's window goes; the program and its panel stay.
    void close();
    // The tray goes to another of its windows, or to nobody.
    void become(xcb_window_t owner);
    // Tells everybody that there is a tray.
    void announce();

 private:
    void place(xcb_window_t window, const PixelRect& frame, std::uint16_t what);

    Bystander program_;
    xcb_window_t panel_ = XCB_NONE;
    xcb_window_t owner_ = XCB_NONE;
    xcb_window_t asking_ = XCB_NONE;
};

}  // namespace norvane
