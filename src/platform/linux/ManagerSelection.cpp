#include "platform/linux/ManagerSelection.h"

#include <xcb/xfixes.h>
#include <utility>

#include "platform/linux/X11Event.h"
#include "platform/linux/X11Windows.h"

namespace norvane {

ManagerSelection::ManagerSelection(X11Connection& connection, xcb_atom_t selection)
    : connection_(connection), selection_(selection) {
    // A new manager tells those who listen to the structure of the root.
    listenTo(connection_, connection_.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    if (connection_.fixes().isPresent) {
        xcb_xfixes_select_selection_input(connection_.get(), connection_.root(), selection_,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    events_ =
        connection_.onEvent(connection_.root(), [this](const xcb_generic_event_t& event) { handle(event); });
    ask(false);
}

void ManagerSelection::handle(const xcb_generic_event_t& event) {
    const int type = typeOf(event);
    if (type == XCB_CLIENT_MESSAGE) {
        const auto& message = eventAs<xcb_client_message_event_t>(event);
        // What it says of the owner is not taken for granted: anybody can say it.
        if (message.type == connection_.atoms().manager && message.format == 32 &&
            message.data.data32[1] == selection_) {
            ask(false);
        }
    } else if (connection_.fixes().isPresent &&
               type == connection_.fixes().firstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& notice = eventAs<xcb_xfixes_selection_notify_event_t>(event);
        if (notice.selection == selection_) ask(false);
    }
}

void ManagerSelection::ask(bool hasGone) {
    const xcb_window_t before = std::exchange(owner_, currentOwner());
    ownerEvents_.cancel();
    if (owner_ != XCB_NONE) {
        ownerEvents_ = connection_.onEvent(owner_, [this](const xcb_generic_event_t& event) {
            if (typeOf(event) == XCB_DESTROY_NOTIFY &&
                eventAs<xcb_destroy_notify_event_t>(event).window == owner_) {
                ask(true);
            }
        });
    }
    if (owner_ != before || (hasGone && owner_ != XCB_NONE)) changed_.tell();
}

xcb_window_t ManagerSelection::currentOwner() const {
    xcb_connection_t* const server = connection_.get();
    const X11Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, selection_), nullptr));
    // Any client can make any window the owner. No manager has the root.
    if (!reply || reply->owner == XCB_NONE || reply->owner == connection_.root()) return XCB_NONE;
    return listenTo(connection_, reply->owner, XCB_EVENT_MASK_STRUCTURE_NOTIFY) ? reply->owner
                                                                                : xcb_window_t{XCB_NONE};
}

}  // namespace norvane
