#include "platform/linux/X11Settings.h"

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

X11Settings::X11Settings(X11Connection& connection)
    : connection_(connection), manager_(connection, connection.atoms().xsettings) {
    changes_ = manager_.onDidChange([this] { follow(); });
    follow();
}

void X11Settings::follow() {
    events_.cancel();
    if (const xcb_window_t owner = manager_.owner(); owner != XCB_NONE) {
        events_ = connection_.onEvent(owner, [this](const xcb_generic_event_t& event) {
            if (typeOf(event) == XCB_PROPERTY_NOTIFY &&
                eventAs<xcb_property_notify_event_t>(event).atom == connection_.atoms().xsettingsSettings) {
                read();
            }
        });
        // Before the property is read, so that no change of it is missed.
        listenTo(connection_, owner, XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
    read();
}

void X11Settings::read() {
    XSettings settings;
    if (manager_.owner() != XCB_NONE) {
        xcb_connection_t* const server = connection_.get();
        const xcb_atom_t name = connection_.atoms().xsettingsSettings;
        // Null where the window has gone meanwhile.
        const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            server, xcb_get_property(server, 0, manager_.owner(), name, name, 0, kMostSettings), nullptr));
        if (reply && reply->format == 8) {
            settings = parseXSettings({static_cast<const char*>(xcb_get_property_value(reply.get())),
                                       static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))});
        }
    }
    if (settings != current_.get()) current_.set(settings);
}

}  // namespace norvane
