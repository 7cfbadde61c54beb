#include "PlayedTray.h"

#include <array>

#include "platform/linux/X11Event.h"
#include "platform/linux/X11Reply.h"

namespace norvane {

PlayedTray::PlayedTray(const std::string& display, xcb_visualid_t visual)
    : program_(display), panel_(program_.open(kPanel)), owner_(program_.open({-10, -10, 1, 1})) {
    if (visual != XCB_NONE) {
        xcb_change_property(program_.get(), XCB_PROP_MODE_REPLACE, owner_,
                            program_.atom("_NET_SYSTEM_TRAY_VISUAL"), XCB_ATOM_VISUALID, 32, 1, &visual);
    }
    become(owner_);
    announce();
}

void PlayedTray::become(xcb_window_t owner) {
    program_.own("_NET_SYSTEM_TRAY_S0", owner);
}

void PlayedTray::announce() {
    program_.announce("_NET_SYSTEM_TRAY_S0", owner_);
}

xcb_window_t PlayedTray::asking() {
    const xcb_atom_t opcode = program_.atom("_NET_SYSTEM_TRAY_OPCODE");
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(program_.get())}) {
        if (typeOf(*event) != XCB_CLIENT_MESSAGE) continue;
        const auto& message = eventAs<xcb_client_message_event_t>(*event);
        const bool asksToDock = message.type == opcode && message.data.data32[1] == 0;
        if (asksToDock && message.window == owner_) asking_ = message.data.data32[2];
    }
    return asking_;
}

void PlayedTray::embed(xcb_window_t item, const PixelRect& part) {
    // As real ones do: so that the item survives its panel.
    xcb_change_save_set(program_.get(), XCB_SET_MODE_INSERT, item);
    xcb_reparent_window(program_.get(), item, panel_, 0, 0);
    give(item, part);
    program_.map(item);
}

void PlayedTray::give(xcb_window_t item, const PixelRect& part) {
    place(item, part,
          XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT);
}

void PlayedTray::dismiss(xcb_window_t item) {
    xcb_unmap_window(program_.get(), item);
    xcb_reparent_window(program_.get(), item, program_.root(), kPanel.x, kPanel.y);
    program_.sync();
}

void PlayedTray::slide(int x, int y) {
    place(panel_, {x, y, 0, 0}, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y);
}

void PlayedTray::close() {
    program_.close(owner_);
}

void PlayedTray::place(xcb_window_t window, const PixelRect& frame, std::uint16_t what) {
    const std::array values{frame.x, frame.y, frame.width, frame.height};
    xcb_configure_window(program_.get(), window, what, values.data());
    program_.sync();
}

}  // namespace norvane
