#include "platform/linux/X11SingleInstance.h"

#include "platform/linux/X11Event.h"

namespace norvane {
namespace {

// While it lives nobody else is served: between the look at the owner and the claim nobody can come.
class ServerGrab {
 public:
    explicit ServerGrab(xcb_connection_t* server) : server_(server) { xcb_grab_server(server_); }
    ~ServerGrab() {
        xcb_ungrab_server(server_);
        xcb_flush(server_);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

 private:
    xcb_connection_t* server_;
};

}  // namespace

std::unique_ptr<X11SingleInstance> X11SingleInstance::claim(X11Connection& connection) {
    xcb_connection_t* const server = connection.get();
    const X11Atoms& atoms = connection.atoms();
    const ServerGrab grab(server);
    const X11Reply<xcb_get_selection_owner_reply_t> first(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, atoms.norvane), nullptr));
    if (first && first->owner != XCB_NONE) {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = first->owner;
        event.type = atoms.norvaneReopen;
        xcb_send_event(server, 0, first->owner, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&event));
        return nullptr;
    }
    return std::unique_ptr<X11SingleInstance>(new X11SingleInstance(connection));
}

X11SingleInstance::X11SingleInstance(X11Connection& connection)
    : connection_(connection), window_(xcb_generate_id(connection.get())) {
    xcb_create_window(connection_.get(), 0, window_, connection_.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    events_ = connection_.onEvent(window_, [this](const xcb_generic_event_t& event) { handle(event); });
    xcb_set_selection_owner(connection_.get(), window_, connection_.atoms().norvane, XCB_CURRENT_TIME);
}

X11SingleInstance::~X11SingleInstance() {
    events_.cancel();
    if (!connection_.isAlive()) return;
    xcb_destroy_window(connection_.get(), window_);
    xcb_flush(connection_.get());
}

void X11SingleInstance::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != XCB_CLIENT_MESSAGE) return;
    if (eventAs<xcb_client_message_event_t>(event).type != connection_.atoms().norvaneReopen) return;
    if (const auto handler = reopened_) handler();
}

}  // namespace norvane
