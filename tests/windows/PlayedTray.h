#pragma once

#include "Bystander.h"
#include "platform/linux/X11Event.h"

namespace norvane {

// A panel with a tray, another program on the same screen, that does with its items what it is told to. It
// dies when destroyed.
class PlayedTray : public Bystander {
 public:
    // Where the panel is, on the screen.
    static constexpr PixelRect kPanel{200, 300, 400, 40};

    // A visual that items may have, if any.
    explicit PlayedTray(const std::string& display, xcb_visualid_t visual = XCB_NONE)
        : Bystander(display), panel_(open(kPanel)), owner_(open({-10, -10, 1, 1})) {
        if (visual != XCB_NONE) set(owner_, "_NET_SYSTEM_TRAY_VISUAL", XCB_ATOM_VISUALID, 32, &visual, 1);
        own("_NET_SYSTEM_TRAY_S0", owner_);
        announce("_NET_SYSTEM_TRAY_S0", owner_);
    }

    // The window that has asked to be taken in; XCB_NONE until one has.
    xcb_window_t asking() {
        while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(get())}) {
            if (typeOf(*event) != XCB_CLIENT_MESSAGE) continue;
            const auto& message = eventAs<xcb_client_message_event_t>(*event);
            if (message.window == owner_ && message.data.data32[1] == 0) asking_ = message.data.data32[2];
        }
        return asking_;
    }
    // Takes it into the panel, in that part of it.
    void embed(xcb_window_t item, const PixelRect& part) const {
        // As real ones do: so that the item survives its panel.
        xcb_change_save_set(get(), XCB_SET_MODE_INSERT, item);
        xcb_reparent_window(get(), item, panel_, 0, 0);
        give(item, part);
        map(item);
    }
    // Gives it another part of the panel.
    void give(xcb_window_t item, const PixelRect& part) const { move(item, part); }
    void throwOut(xcb_window_t item) const { await(xcb_reparent_window(get(), item, root(), 9, 9)); }
    void dismiss(xcb_window_t item) const {
        unmap(item);
        throwOut(item);
    }
    // Moves the whole panel.
    void slide(int x, int y) const { move(panel_, {x, y, kPanel.width, kPanel.height}); }
    // The tray's window goes; the program and its panel stay.
    void endTray() const { close(owner_); }

 private:
    xcb_window_t panel_ = XCB_NONE;
    xcb_window_t owner_ = XCB_NONE;
    xcb_window_t asking_ = XCB_NONE;
};

}  // namespace norvane
