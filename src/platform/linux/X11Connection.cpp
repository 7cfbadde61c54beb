#include "platform/linux/X11Connection.h"

#include <glib.h>
#include <sys/socket.h>
#include <xcb/dpms.h>
#include <xcb/randr.h>
#include <xcb/screensaver.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>
#include <bit>
#include <utility>

#include "platform/linux/X11Event.h"
#include "platform/linux/XWayland.h"

namespace norvane {
namespace {

// So many events at most before the main context's other sources get their turn.
constexpr int kMostEventsInATurn = 256;

X11Connection::Extension extensionOf(xcb_connection_t* connection, xcb_extension_t& id) {
    const xcb_query_extension_reply_t* const data = xcb_get_extension_data(connection, &id);
    if (data == nullptr || data->present == 0) return {};
    return {true, data->first_event, data->major_opcode};
}

bool isAtLeast(std::uint32_t major, std::uint32_t minor, std::uint32_t wantedMajor,
               std::uint32_t wantedMinor) {
    return major > wantedMajor || (major == wantedMajor && minor >= wantedMinor);
}

// Descriptors travel over a local socket only. A forwarded display looks like a local one in all else.
bool isLocalSocket(int descriptor) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    return getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
           address.ss_family == AF_UNIX;
}

}  // namespace

// XCB reads from the socket whenever it waits for a reply, and keeps the events that came with it: so what is
// queued is asked for before each wait, not only after the socket became readable.
struct X11Connection::Source {
    GSource base;
    X11Connection* connection;
    gpointer socketTag;

    static X11Connection& connectionOf(GSource* source) {
        return *reinterpret_cast<Source*>(source)->connection;
    }
    static gboolean prepare(GSource* source, gint* timeout) {
        *timeout = -1;
        X11Connection& owner = connectionOf(source);
        // First: a write that has to wait reads events meanwhile.
        xcb_flush(owner.connection_);
        return owner.hasEventWaiting();
    }
    static gboolean check(GSource* source) {
        X11Connection& owner = connectionOf(source);
        // Without a word from the server there is nothing to read.
        const bool isReadable =
            g_source_query_unix_fd(source, reinterpret_cast<Source*>(source)->socketTag) != 0;
        return isReadable ? owner.hasEventArrived() : owner.hasEventWaiting();
    }
    static gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
        connectionOf(source).deliverEvents();
        return G_SOURCE_CONTINUE;
    }

    static GSourceFuncs* functions() {
        static GSourceFuncs functions = {prepare, check, dispatch, nullptr, nullptr, nullptr};
        return &functions;
    }
};

std::unique_ptr<X11Connection> X11Connection::open(const char* display, const Uses& uses) {
    int screenNumber = 0;
    xcb_connection_t* const connection = xcb_connect(display, &screenNumber);
    xcb_screen_t* screen = nullptr;
    if (xcb_connection_has_error(connection) == 0) {
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
        for (int i = 0; i < screenNumber && screens.rem > 1; ++i)
            xcb_screen_next(&screens);
        if (screens.rem > 0) screen = screens.data;
    }
    if (screen == nullptr) {
        xcb_disconnect(connection);
        return nullptr;
    }
    std::unique_ptr<X11Connection> opened(new X11Connection(connection, screen));
    if (!opened->introduce(screenNumber)) return nullptr;
    if (!uses.shm) opened->shm_ = {};
    if (!uses.input) opened->input_ = {};
    if (!uses.shape) opened->shape_ = {};
    if (!uses.fixes) opened->fixes_ = {};
    opened->isXWayland_ = runsOnWayland(connection, screen->root, opened->randr_.isPresent);
    opened->hasManagedPopovers_ = opened->isXWayland_ || uses.managedPopovers;
    opened->listen();
    return opened;
}

X11Connection::~X11Connection() {
    if (source_ != nullptr) {
        g_source_destroy(&source_->base);
        g_source_unref(&source_->base);
    }
    xcb_disconnect(connection_);
}

// Two exchanges with the server, however much there is to ask.
bool X11Connection::introduce(int screenNumber) {
    for (xcb_extension_t* id : {&xcb_shm_id, &xcb_input_id, &xcb_randr_id, &xcb_shape_id, &xcb_xfixes_id,
                                &xcb_dpms_id, &xcb_screensaver_id}) {
        xcb_prefetch_extension_data(connection_, id);
    }
    if (!atoms_.intern(connection_, screenNumber)) return false;

    shm_ = extensionOf(connection_, xcb_shm_id);
    input_ = extensionOf(connection_, xcb_input_id);
    randr_ = extensionOf(connection_, xcb_randr_id);
    shape_ = extensionOf(connection_, xcb_shape_id);
    fixes_ = extensionOf(connection_, xcb_xfixes_id);
    dpms_ = extensionOf(connection_, xcb_dpms_id);
    saver_ = extensionOf(connection_, xcb_screensaver_id);
    xcb_shm_query_version_cookie_t shm{};
    xcb_input_xi_query_version_cookie_t input{};
    xcb_randr_query_version_cookie_t randr{};
    xcb_xfixes_query_version_cookie_t fixes{};
    if (shm_.isPresent) shm = xcb_shm_query_version(connection_);
    if (input_.isPresent) input = xcb_input_xi_query_version(connection_, 2, 2);
    if (randr_.isPresent) randr = xcb_randr_query_version(connection_, 1, 5);
    if (fixes_.isPresent) fixes = xcb_xfixes_query_version(connection_, 5, 0);
    if (shm_.isPresent) {
        const X11Reply<xcb_shm_query_version_reply_t> reply(
            xcb_shm_query_version_reply(connection_, shm, nullptr));
        shm_.isPresent = reply && isAtLeast(reply->major_version, reply->minor_version, 1, 2) &&
                         isLocalSocket(xcb_get_file_descriptor(connection_));
    }
    if (input_.isPresent) {
        const X11Reply<xcb_input_xi_query_version_reply_t> reply(
            xcb_input_xi_query_version_reply(connection_, input, nullptr));
        // 2.1 for presses that come past grabs, 2.2 for touches.
        input_.isPresent = reply && isAtLeast(reply->major_version, reply->minor_version, 2, 2);
    }
    if (randr_.isPresent) {
        const X11Reply<xcb_randr_query_version_reply_t> reply(
            xcb_randr_query_version_reply(connection_, randr, nullptr));
        randr_.isPresent = reply && isAtLeast(reply->major_version, reply->minor_version, 1, 5);
    }
    if (fixes_.isPresent) {
        const X11Reply<xcb_xfixes_query_version_reply_t> reply(
            xcb_xfixes_query_version_reply(connection_, fixes, nullptr));
        fixes_.isPresent = reply && reply->major_version >= 1;
    }
    const bool serverIsLittle = xcb_get_setup(connection_)->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    hasOurByteOrder_ = serverIsLittle == (std::endian::native == std::endian::little);
    findVisuals();
    return isAlive() && opaque_.id != XCB_NONE;
}

void X11Connection::findVisuals() {
    // The root's own visual, where it will do, needs no colour map of ours.
    opaque_ = findVisual(24, screen_->root_visual, false);
    translucent_ = findVisual(32, screen_->root_visual, false);
    addColormap(opaque_);
    addColormap(translucent_);
}

X11Connection::Visual X11Connection::findVisual(std::uint8_t depth, xcb_visualid_t preferred,
                                                bool isRequired) const {
    Visual found;
    bool has32BitPixels = false;
    for (auto formats = xcb_setup_pixmap_formats_iterator(xcb_get_setup(connection_)); formats.rem > 0;
         xcb_format_next(&formats)) {
        if (formats.data->depth == depth && formats.data->bits_per_pixel == 32) has32BitPixels = true;
    }
    if (!has32BitPixels) return found;
    for (auto depths = xcb_screen_allowed_depths_iterator(screen_); depths.rem > 0; xcb_depth_next(&depths)) {
        if (depths.data->depth != depth) continue;
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals)) {
            const xcb_visualtype_t& visual = *visuals.data;
            const bool isOurs = visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.red_mask == 0xFF0000 &&
                                visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF;
            const bool isPreferred = visual.visual_id == preferred;
            if (isOurs && (isPreferred || (!isRequired && found.id == XCB_NONE))) {
                found = {depth, visual.visual_id, XCB_NONE};
            }
        }
    }
    return found;
}

void X11Connection::addColormap(Visual& visual) {
    if (visual.id == XCB_NONE) return;
    if (visual.id == screen_->root_visual) {
        visual.colormap = screen_->default_colormap;
        return;
    }
    visual.colormap = xcb_generate_id(connection_);
    xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, visual.colormap, screen_->root, visual.id);
}

X11Connection::Visual X11Connection::translucentVisual(xcb_visualid_t id) {
    if (id == translucent_.id) return translucent_;
    if (const auto found = otherTranslucent_.find(id); found != otherTranslucent_.end()) return found->second;
    Visual visual = findVisual(32, id, true);
    if (visual.id == XCB_NONE) return {};
    addColormap(visual);
    otherTranslucent_.emplace(id, visual);
    return visual;
}

void X11Connection::listen() {
    GSource* const source = g_source_new(Source::functions(), sizeof(Source));
    source_ = reinterpret_cast<Source*>(source);
    source_->connection = this;
    g_source_set_static_name(source, "X server");
    source_->socketTag = g_source_add_unix_fd(source, xcb_get_file_descriptor(connection_),
                                              static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR));
    // Else the context takes its descriptor out while it is dispatched, and is woken by each of that.
    g_source_set_can_recurse(source, TRUE);
    g_source_attach(source, nullptr);
}

Cancellation X11Connection::onEvent(xcb_window_t window, EventObserver observer) {
    Listeners& listeners = (*listeners_)[window];
    ++listeners.count;
    auto added = std::make_shared<Cancellation>(listeners.observers.add(std::move(observer)));
    return Cancellation([all = std::weak_ptr(listeners_), added, window] {
        added->cancel();
        const auto alive = all.lock();
        if (!alive) return;
        const auto found = alive->find(window);
        if (found != alive->end() && --found->second.count == 0) alive->erase(found);
    });
}

bool X11Connection::hasEventWaiting() {
    if (!next_) next_.reset(xcb_poll_for_queued_event(connection_));
    return next_ || !isAlive();
}

bool X11Connection::hasEventArrived() {
    if (!next_) next_.reset(xcb_poll_for_event(connection_));
    return next_ || !isAlive();
}

void X11Connection::deliverEvents() {
    for (int i = 0; i < kMostEventsInATurn && hasEventArrived() && next_; ++i) {
        const auto event = std::move(next_);
        const auto found = listeners_->find(windowOf(*event));
        if (found == listeners_->end()) continue;
        // A copy of it shares the list: the entry itself may go while the observers are told.
        const auto observers = found->second.observers;
        observers.tell(*event);
    }
    if (isAlive() || std::exchange(hasEnded_, true)) return;
    g_source_destroy(&source_->base);
    if (const auto ended = ended_) ended();
}

xcb_window_t X11Connection::windowOf(const xcb_generic_event_t& event) const {
    const int type = typeOf(event);
    switch (type) {
        case 0:
            return XCB_NONE;  // a request that failed
        case XCB_KEY_PRESS:
        case XCB_KEY_RELEASE:
        case XCB_BUTTON_PRESS:
        case XCB_BUTTON_RELEASE:
        case XCB_MOTION_NOTIFY:
        case XCB_ENTER_NOTIFY:
        case XCB_LEAVE_NOTIFY:
            return eventAs<xcb_key_press_event_t>(event).event;
        case XCB_FOCUS_IN:
        case XCB_FOCUS_OUT:
            return eventAs<xcb_focus_in_event_t>(event).event;
        case XCB_EXPOSE:
        case XCB_VISIBILITY_NOTIFY:
        case XCB_UNMAP_NOTIFY:
        case XCB_MAP_NOTIFY:
        case XCB_REPARENT_NOTIFY:
        case XCB_CONFIGURE_NOTIFY:
        case XCB_DESTROY_NOTIFY:
            // All of them begin with the window that they were selected on.
            return eventAs<xcb_expose_event_t>(event).window;
        case XCB_PROPERTY_NOTIFY:
            return eventAs<xcb_property_notify_event_t>(event).window;
        case XCB_CLIENT_MESSAGE:
            return eventAs<xcb_client_message_event_t>(event).window;
        default:
            break;
    }
    if (shm_.isPresent && type == shm_.firstEvent + XCB_SHM_COMPLETION) {
        return eventAs<xcb_shm_completion_event_t>(event).drawable;
    }
    return root();
}

}  // namespace norvane
