#include "platform/linux/X11Settings.h"

#include <xcb/xfixes.h>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/linux/X11Event.h"
#include "platform/linux/X11Windows.h"

namespace norvane {
namespace {

// 32-bit units of the settings that are read at most. Real ones have some thousands of bytes.
constexpr std::uint32_t kMostSettings = 64 * 1024;

}  // namespace

X11Settings::X11Settings(X11Connection& connection) : connection_(connection) {
    // A new manager tells those who listen to the structure of the root.
    listenTo(connection_, connection_.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    if (connection_.fixes().isPresent) {
        xcb_xfixes_select_selection_input(connection_.get(), connection_.root(),
                                          connection_.atoms().xsettings,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    events_ =
        connection_.onEvent(connection_.root(), [this](const xcb_generic_event_t& event) { handle(event); });
    findOwner();
}

void X11Settings::handle(const xcb_generic_event_t& event) {
    const int type = typeOf(event);
    const X11Atoms& atoms = connection_.atoms();
    if (type == XCB_CLIENT_MESSAGE) {
        const auto& message = eventAs<xcb_client_message_event_t>(event);
        // What it says of the owner is not taken for granted: anybody can say it.
        if (message.type == atoms.manager && message.format == 32 &&
            message.data.data32[1] == atoms.xsettings) {
            findOwner();
        }
    } else if (connection_.fixes().isPresent &&
               type == connection_.fixes().firstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& notice = eventAs<xcb_xfixes_selection_notify_event_t>(event);
        if (notice.selection == atoms.xsettings) findOwner();
    }
}

void X11Settings::handleOwner(const xcb_generic_event_t& event) {
    const int type = typeOf(event);
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& notice = eventAs<xcb_property_notify_event_t>(event);
        if (notice.atom == connection_.atoms().xsettingsSettings) read();
    } else if (type == XCB_DESTROY_NOTIFY && eventAs<xcb_destroy_notify_event_t>(event).window == owner_) {
        findOwner();
    }
}

void X11Settings::findOwner() {
    xcb_connection_t* const server = connection_.get();
    const X11Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        server, xcb_get_selection_owner(server, connection_.atoms().xsettings), nullptr));
    // Any client can make any window the owner. No manager has the root.
    owner_ = reply && reply->owner != connection_.root() ? reply->owner : xcb_window_t{XCB_NONE};
    ownerEvents_.cancel();
    if (owner_ != XCB_NONE) {
        ownerEvents_ =
            connection_.onEvent(owner_, [this](const xcb_generic_event_t& event) { handleOwner(event); });
        // Before the property is read, so that no change of it is missed.
        listenTo(connection_, owner_, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
    read();
}

void X11Settings::read() {
    XSettings settings;
    if (owner_ != XCB_NONE) {
        xcb_connection_t* const server = connection_.get();
        const xcb_atom_t name = connection_.atoms().xsettingsSettings;
        // Null where the window has gone meanwhile.
        const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            server, xcb_get_property(server, 0, owner_, name, name, 0, kMostSettings), nullptr));
        if (reply && reply->format == 8) {
            settings = parseXSettings({static_cast<const char*>(xcb_get_property_value(reply.get())),
                                       static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))});
        }
    }
    if (settings != current_.get()) current_.set(settings);
}

}  // namespace norvane
