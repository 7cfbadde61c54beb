#include "platform/linux/X11Screen.h"

#include <xcb/randr.h>
#include <xcb/xfixes.h>
#include <algorithm>
#include <string_view>

#include "platform/linux/X11Event.h"
#include "platform/linux/XftScale.h"

namespace norvane {
namespace {

// 32-bit units of the resources that are read at most. Real ones have some thousands of bytes.
constexpr std::uint32_t kMostResources = 64 * 1024;

std::string_view bytesOf(const xcb_get_property_reply_t& reply) {
    if (reply.format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(&reply)),
            static_cast<std::size_t>(xcb_get_property_value_length(&reply))};
}

// The first desktop's work area: window managers keep it the same for all.
std::optional<PixelRect> workAreaIn(const xcb_get_property_reply_t& reply) {
    if (reply.format != 32 || xcb_get_property_value_length(&reply) < 16) return std::nullopt;
    const auto* const values = static_cast<const std::int32_t*>(xcb_get_property_value(&reply));
    const PixelRect area{values[0], values[1], values[2], values[3]};
    constexpr int kFarthest = 65'535;
    const auto isPlausible = [](int value) { return value >= -kFarthest && value <= kFarthest; };
    if (area.isEmpty() || !isPlausible(area.x) || !isPlausible(area.y) || !isPlausible(area.width) ||
        !isPlausible(area.height)) {
        return std::nullopt;
    }
    return area;
}

}  // namespace

X11Screen::X11Screen(X11Connection& connection)
    : connection_(connection),
      bounds_{0, 0, connection.screen().width_in_pixels, connection.screen().height_in_pixels} {
    xcb_connection_t* const server = connection_.get();
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(server, connection_.root(), XCB_CW_EVENT_MASK, &mask);
    if (connection_.randr().isPresent) {
        xcb_randr_select_input(server, connection_.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
    if (connection_.fixes().isPresent) {
        xcb_xfixes_select_selection_input(server, connection_.root(), connection_.atoms().netWmCm,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    events_ =
        connection_.onEvent(connection_.root(), [this](const xcb_generic_event_t& event) { handle(event); });
    ask({.resources = true, .workArea = true, .monitors = true, .compositor = true});
}

PixelRect X11Screen::primaryFrame() const {
    const Monitor* const monitor = primaryMonitor(monitors_);
    return monitor != nullptr ? monitor->frame : bounds_;
}

bool X11Screen::isPrimaryAtTop() const {
    const PixelRect primary = primaryFrame();
    return std::none_of(monitors_.begin(), monitors_.end(), [&](const Monitor& monitor) {
        const PixelRect& other = monitor.frame;
        return other.y < primary.y && other.x < primary.x + primary.width &&
               primary.x < other.x + other.width;
    });
}

PixelRect X11Screen::monitorPixels(Point at) const {
    const Monitor* const monitor = monitorAt(monitors_, pixelsAt(at.x, scale_), pixelsAt(at.y, scale_));
    return monitor != nullptr ? monitor->frame : bounds_;
}

Rect X11Screen::monitorFrame(Point at) const {
    return monitorPixels(at).inPoints(scale_);
}

std::optional<Rect> X11Screen::visibleFrame(Point at) const {
    if (!connection_.isAlive()) return std::nullopt;
    const PixelRect whole = monitorPixels(at);
    // There is one work area for all monitors: it may well miss this one.
    const PixelRect free = workArea_ ? whole.intersection(*workArea_) : whole;
    return (free.isEmpty() ? whole : free).inPoints(scale_);
}

bool X11Screen::hasWindowManager() const {
    const X11Reply<xcb_get_window_attributes_reply_t> root(xcb_get_window_attributes_reply(
        connection_.get(), xcb_get_window_attributes(connection_.get(), connection_.root()), nullptr));
    // Only one program at a time may decide over other programs' windows.
    return root && (root->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) != 0;
}

void X11Screen::handle(const xcb_generic_event_t& event) {
    const int type = typeOf(event);
    if (type == XCB_PROPERTY_NOTIFY) {
        const xcb_atom_t atom = eventAs<xcb_property_notify_event_t>(event).atom;
        if (atom == XCB_ATOM_RESOURCE_MANAGER) ask({.resources = true});
        if (atom == connection_.atoms().netWorkarea) ask({.workArea = true});
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& configured = eventAs<xcb_configure_notify_event_t>(event);
        if (configured.window != connection_.root()) return;
        const PixelRect bounds{0, 0, configured.width, configured.height};
        const bool isSame = bounds == bounds_;
        bounds_ = bounds;
        ask({.monitors = true});
        if (!isSame) changed_.tell();
    } else if (connection_.randr().isPresent &&
               (type == connection_.randr().firstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                type == connection_.randr().firstEvent + XCB_RANDR_NOTIFY)) {
        ask({.monitors = true});
    } else if (connection_.fixes().isPresent &&
               type == connection_.fixes().firstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        // Other parts of ours follow other selections on the root.
        const auto& notice = eventAs<xcb_xfixes_selection_notify_event_t>(event);
        if (notice.selection == connection_.atoms().netWmCm) ask({.compositor = true});
    }
}

void X11Screen::ask(const Questions& questions) {
    xcb_connection_t* const server = connection_.get();
    const X11Atoms& atoms = connection_.atoms();
    xcb_get_property_cookie_t resources{};
    xcb_get_property_cookie_t workArea{};
    xcb_randr_get_monitors_cookie_t monitors{};
    xcb_get_selection_owner_cookie_t compositor{};
    const bool asksMonitors = questions.monitors && connection_.randr().isPresent;
    if (questions.resources) {
        resources = xcb_get_property(server, 0, connection_.root(), XCB_ATOM_RESOURCE_MANAGER,
                                     XCB_ATOM_STRING, 0, kMostResources);
    }
    if (questions.workArea) {
        workArea =
            xcb_get_property(server, 0, connection_.root(), atoms.netWorkarea, XCB_ATOM_CARDINAL, 0, 4);
    }
    if (asksMonitors) monitors = xcb_randr_get_monitors(server, connection_.root(), 1);
    if (questions.compositor) compositor = xcb_get_selection_owner(server, atoms.netWmCm);

    bool differs = false;
    const auto take = [&differs](auto& place, auto value) {
        if (place == value) return;
        place = std::move(value);
        differs = true;
    };
    if (questions.resources) {
        const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(server, resources, nullptr));
        if (reply) take(scale_, scaleFromResources(bytesOf(*reply)));
    }
    if (questions.workArea) {
        const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(server, workArea, nullptr));
        if (reply) take(workArea_, workAreaIn(*reply));
    }
    if (asksMonitors) {
        const X11Reply<xcb_randr_get_monitors_reply_t> reply(
            xcb_randr_get_monitors_reply(server, monitors, nullptr));
        if (reply) {
            std::vector<Monitor> found;
            for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem > 0;
                 xcb_randr_monitor_info_next(&each)) {
                const xcb_randr_monitor_info_t& info = *each.data;
                const PixelRect frame{info.x, info.y, info.width, info.height};
                if (!frame.isEmpty()) found.push_back({frame, info.primary != 0});
            }
            take(monitors_, std::move(found));
        }
    }
    if (questions.compositor) {
        const X11Reply<xcb_get_selection_owner_reply_t> reply(
            xcb_get_selection_owner_reply(server, compositor, nullptr));
        if (reply) take(isComposited_, reply->owner != XCB_NONE);
    }
    if (differs) changed_.tell();
}

}  // namespace norvane
