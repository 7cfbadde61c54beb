#include "platform/linux/PopoverFocus.h"

#include <utility>

namespace norvane {
namespace {

// Whether a change of the keyboard's focus is one of the window and lasts. A grab borrows the keyboard and
// gives it back; the other details tell of a part of the window, or of the pointer being over it while
// another has the focus.
bool isOfTheWindowItself(const xcb_focus_in_event_t& event) {
    if (event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB) return false;
    return event.detail != XCB_NOTIFY_DETAIL_INFERIOR && event.detail != XCB_NOTIFY_DETAIL_POINTER &&
           event.detail != XCB_NOTIFY_DETAIL_POINTER_ROOT && event.detail != XCB_NOTIFY_DETAIL_NONE;
}

}  // namespace

void PopoverFocus::want() {
    wants_ = true;
    if (window_ != XCB_NONE) askForTheTime();
}

void PopoverFocus::mapped(xcb_window_t window) {
    window_ = window;
    if (wants_) askForTheTime();
}

void PopoverFocus::pointerCame() {
    if (wants_ && window_ != XCB_NONE) askForTheTime();
}

void PopoverFocus::told(const xcb_property_notify_event_t& event) {
    if (event.atom == XCB_ATOM_WM_NAME && wants_ && window_ != XCB_NONE) take(event.time);
}

void PopoverFocus::came(const xcb_focus_in_event_t& event) {
    if (isOfTheWindowItself(event)) has_ = true;
}

bool PopoverFocus::left(const xcb_focus_out_event_t& event) {
    if (!isOfTheWindowItself(event) || !std::exchange(has_, false)) return false;
    xcb_connection_t* const server = desk_.connection.get();
    const auto focusCookie = xcb_get_input_focus(server);
    const auto pointerCookie = xcb_query_pointer(server, desk_.connection.root());
    const X11Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(server, focusCookie, nullptr));
    const X11Reply<xcb_query_pointer_reply_t> at(xcb_query_pointer_reply(server, pointerCookie, nullptr));
    if (!focus || !at) return false;
    if (desk_.ownWindows.include(focus->focus)) return false;
    // A panel that takes the keyboard while our item is being clicked: the click itself says what to do.
    if ((at->mask & XCB_KEY_BUT_MASK_BUTTON_1) != 0 && desk_.ownWindows.cover(at->root_x, at->root_y)) {
        return false;
    }
    // Where the keyboard follows the pointer, it went along on the pointer's way: nobody chose another
    // window, and presses outside are told otherwise. It is wanted again when the pointer comes.
    if (desk_.outsidePresses.isAvailable() && isUnder(*at, focus->focus)) {
        wants_ = true;
        return false;
    }
    return true;
}

void PopoverFocus::giveBack() {
    if (has_ && !desk_.connection.hasManagedPopovers()) {
        xcb_set_input_focus(desk_.connection.get(), XCB_INPUT_FOCUS_POINTER_ROOT, before_, time_);
    }
    has_ = false;
    wants_ = false;
    window_ = XCB_NONE;
}

// An empty change of a property tells the time.
void PopoverFocus::askForTheTime() {
    xcb_change_property(desk_.connection.get(), XCB_PROP_MODE_APPEND, window_, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, 0, nullptr);
}

void PopoverFocus::take(xcb_timestamp_t time) {
    wants_ = false;
    xcb_connection_t* const server = desk_.connection.get();
    const X11Reply<xcb_get_input_focus_reply_t> before(
        xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    if (!before) return;
    if (before->focus != window_) {
        // To one of our own windows it would go back when that may be gone.
        before_ = desk_.ownWindows.include(before->focus) ? xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}
                                                          : before->focus;
    }
    time_ = time;
    // Already: it may be given back before the server's word is here. A managed window may well not get it.
    if (!desk_.connection.hasManagedPopovers()) has_ = true;
    xcb_set_input_focus(server, XCB_INPUT_FOCUS_POINTER_ROOT, window_, time);
}

// Whether that window is what the pointer is over, with no button pressed.
bool PopoverFocus::isUnder(const xcb_query_pointer_reply_t& pointer, xcb_window_t window) const {
    constexpr unsigned kAnyButton =
        XCB_KEY_BUT_MASK_BUTTON_1 | XCB_KEY_BUT_MASK_BUTTON_2 | XCB_KEY_BUT_MASK_BUTTON_3;
    if (window <= XCB_INPUT_FOCUS_POINTER_ROOT || window == desk_.connection.root() ||
        (pointer.mask & kAnyButton) != 0) {
        return false;
    }
    xcb_connection_t* const server = desk_.connection.get();
    const auto placeCookie =
        xcb_translate_coordinates(server, desk_.connection.root(), window, pointer.root_x, pointer.root_y);
    const auto sizeCookie = xcb_get_geometry(server, window);
    const X11Reply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(server, placeCookie, nullptr));
    const X11Reply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(server, sizeCookie, nullptr));
    return place && size && PixelRect{0, 0, size->width, size->height}.contains(place->dst_x, place->dst_y);
}

}  // namespace norvane
