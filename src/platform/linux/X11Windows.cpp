#include "platform/linux/X11Windows.h"

namespace norvane {

std::optional<PixelRect> frameOnScreen(X11Connection& connection, xcb_window_t window) {
    xcb_connection_t* const server = connection.get();
    const auto placeCookie = xcb_translate_coordinates(server, window, connection.root(), 0, 0);
    const auto sizeCookie = xcb_get_geometry(server, window);
    const X11Reply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(server, placeCookie, nullptr));
    const X11Reply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(server, sizeCookie, nullptr));
    if (!place || !size) return std::nullopt;
    return PixelRect{place->dst_x, place->dst_y, size->width, size->height};
}

bool listenTo(X11Connection& connection, xcb_window_t window, std::uint32_t events) {
    xcb_connection_t* const server = connection.get();
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(server, xcb_get_window_attributes(server, window), nullptr));
    if (!attributes) return false;
    const std::uint32_t mask = attributes->your_event_mask | events;
    // Checked: it may have gone since.
    const X11Reply<xcb_generic_error_t> error(xcb_request_check(
        server, xcb_change_window_attributes_checked(server, window, XCB_CW_EVENT_MASK, &mask)));
    return !error && connection.isAlive();
}

}  // namespace norvane
