#include "platform/linux/TrayHost.h"

#include <xcb/xcb_icccm.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "drawing/PanelTones.h"
#include "platform/linux/StatusItemGround.h"
#include "platform/linux/StripHost.h"
#include "platform/linux/X11Event.h"
#include "platform/linux/X11Properties.h"
#include "platform/linux/X11Windows.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// A panel that has not taken the window by then is not going to.
constexpr std::chrono::nanoseconds kPatience = 2s;

// Of the System Tray Protocol, and of XEmbed's _XEMBED_INFO.
constexpr std::uint32_t kRequestDock = 0;
constexpr std::uint32_t kXEmbedVersion = 0;
constexpr std::uint32_t kXEmbedMapped = 1;

}  // namespace

TrayHost::TrayHost(const Desk& desk, xcb_window_t tray, Events events)
    : desk_(desk),
      tray_(tray),
      events_(std::move(events)),
      length_(StripHost::kHeight),
      face_(
          desk, [this] { update(); }, events_.clicked) {}

TrayHost::~TrayHost() {
    destroyWindow();
}

void TrayHost::setLength(double points) {
    length_ = points > 0 && std::isfinite(points) ? points : StripHost::kHeight;
    face_.updateSoon();
}

std::optional<Rect> TrayHost::buttonFrame() const {
    if (!isShown() || !desk_.connection.isAlive()) return std::nullopt;
    // Nobody tells us when the panel moves with us in it.
    return frameOnScreen(desk_.connection, window_).value_or(frame_).inPoints(desk_.screen.scale());
}

// --- The window
// ----------------------------------------------------------------------------------------------

void TrayHost::dock() {
    X11Connection& connection = desk_.connection;
    if (!listenTo(connection, tray_, XCB_EVENT_MASK_STRUCTURE_NOTIFY)) {
        giveUp();
        return;
    }
    trayEvents_ = connection.onEvent(tray_, [this](const xcb_generic_event_t& event) {
        if (typeOf(event) != XCB_DESTROY_NOTIFY) return;
        // The news may be of an earlier tray's window that had the same id.
        if (!listenTo(desk_.connection, tray_, XCB_EVENT_MASK_STRUCTURE_NOTIFY)) giveUp();
    });
    visual_ = offeredVisual();
    createWindow();

    xcb_client_message_event_t request{};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = tray_;
    request.type = connection.atoms().netSystemTrayOpcode;
    request.data.data32[0] = XCB_CURRENT_TIME;
    request.data.data32[1] = kRequestDock;
    request.data.data32[2] = window_;
    xcb_send_event(connection.get(), 0, tray_, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&request));
    patience_ = desk_.mainQueue.after(kPatience, [this] { giveUp(); });
}

// A panel that can show what is translucent names the visual for it.
X11Connection::Visual TrayHost::offeredVisual() const {
    X11Connection& connection = desk_.connection;
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection.get(),
        xcb_get_property(connection.get(), 0, tray_, connection.atoms().netSystemTrayVisual,
                         XCB_ATOM_VISUALID, 0, 1),
        nullptr));
    const bool isThere = reply && reply->format == 32 && xcb_get_property_value_length(reply.get()) == 4;
    const xcb_visualid_t offered =
        isThere ? *static_cast<const xcb_visualid_t*>(xcb_get_property_value(reply.get())) : XCB_NONE;
    const X11Connection::Visual translucent = connection.translucentVisual(offered);
    return translucent.id != XCB_NONE ? translucent : connection.opaqueVisual();
}

void TrayHost::createWindow() {
    X11Connection& connection = desk_.connection;
    window_ = xcb_generate_id(connection.get());
    asked_ = wanted();
    const Color tone = panelTones(desk_.appearance.isDark()).strip;
    const std::array<std::uint32_t, 5> values{
        visual_.depth == 32 ? 0 : opaquePixel(tone.red, tone.green, tone.blue), 0, XCB_GRAVITY_NORTH_WEST,
        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_ENTER_WINDOW |
            XCB_EVENT_MASK_VISIBILITY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY,
        visual_.colormap};
    xcb_create_window(
        connection.get(), visual_.depth, window_, connection.root(), 0, 0,
        static_cast<std::uint16_t>(asked_.width), static_cast<std::uint16_t>(asked_.height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, visual_.id,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
        values.data());
    windowEvents_ = connection.onEvent(window_, [this](const xcb_generic_event_t& event) { handle(event); });
    setNames(connection, window_, "Norvane");
    // It is the panel that maps the window.
    setProperty(connection, window_, connection.atoms().xembedInfo, connection.atoms().xembedInfo,
                {kXEmbedVersion, kXEmbedMapped});
    sayWhatIsWanted();
}

TrayHost::Extent TrayHost::wanted() const {
    const double scale = desk_.screen.scale();
    const PixelRect bounds = desk_.screen.bounds();
    return {std::clamp(pixelsCovering(length_, scale), 1, std::max(1, bounds.width)),
            std::clamp(pixelsCovering(StripHost::kHeight, scale), 1, std::max(1, bounds.height))};
}

// Without these hints panels make items one pixel wide.
void TrayHost::sayWhatIsWanted() {
    xcb_size_hints_t hints{};
    xcb_icccm_size_hints_set_min_size(&hints, asked_.width, asked_.height);
    xcb_icccm_size_hints_set_base_size(&hints, asked_.width, asked_.height);
    xcb_icccm_set_wm_normal_hints(desk_.connection.get(), window_, &hints);
}

void TrayHost::destroyWindow() {
    patience_.cancel();
    told_.cancel();
    trayEvents_.cancel();
    windowEvents_.cancel();
    shown_.cancel();
    face_.release();
    isEmbedded_ = isMapped_ = false;
    if (window_ == XCB_NONE) return;
    // Unmapped first: panels close the gap on that, before the window is gone for their requests.
    xcb_unmap_window(desk_.connection.get(), window_);
    xcb_destroy_window(desk_.connection.get(), std::exchange(window_, xcb_window_t{XCB_NONE}));
    xcb_flush(desk_.connection.get());
}

// A window that panels have let go of must not stay behind on the screen: the server itself shows it there
// when a panel dies.
void TrayHost::giveUp() {
    if (std::exchange(isOver_, true)) return;
    destroyWindow();
    lost_ = desk_.mainQueue.after(0ns, [this] {
        const auto lost = events_.lost;
        if (lost) lost();
    });
}

// --- Pictures
// ------------------------------------------------------------------------------------------------

void TrayHost::update() {
    if (isOver_) return;
    if (window_ == XCB_NONE) {
        dock();
        return;
    }
    if (const Extent now = wanted(); now != asked_) {
        // Only what changes is asked for: the rest is as the panel made it.
        std::uint16_t mask = 0;
        std::array<std::uint32_t, 2> values{};
        std::size_t count = 0;
        if (now.width != asked_.width) {
            mask |= XCB_CONFIG_WINDOW_WIDTH;
            values[count++] = static_cast<std::uint32_t>(now.width);
        }
        if (now.height != asked_.height) {
            mask |= XCB_CONFIG_WINDOW_HEIGHT;
            values[count++] = static_cast<std::uint32_t>(now.height);
        }
        asked_ = now;
        sayWhatIsWanted();
        xcb_configure_window(desk_.connection.get(), window_, mask, values.data());
    }
    if (!isShown()) return;
    // Nothing larger than the screen can be seen, and memory is finite.
    const PixelRect bounds = desk_.screen.bounds();
    const X11Surface::Form form{.window = window_,
                                .visual = visual_,
                                .width = std::clamp(frame_.width, 1, std::max(1, bounds.width)),
                                .height = std::clamp(frame_.height, 1, std::max(1, bounds.height))};
    const double scale = desk_.screen.scale();
    const Size size{form.width / scale, form.height / scale};
    if (face_.paint(form, {statusItemGround(size, desk_.appearance.isDark(), visual_.depth != 32)}, size))
        face_.present();
    tellReceivedSoon();
}

void TrayHost::tellReceivedSoon() {
    const double width = frame_.width / desk_.screen.scale();
    if (width == std::exchange(received_, width)) return;
    told_ = desk_.mainQueue.after(0ns, [this, width] {
        const auto received = events_.received;
        if (received) received(width);
    });
}

// --- What the panel does
// -------------------------------------------------------------------------------------

void TrayHost::handle(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
        case XCB_REPARENT_NOTIFY:
            reparented(eventAs<xcb_reparent_notify_event_t>(event).parent);
            return;
        case XCB_MAP_NOTIFY:
            mapped(true);
            return;
        case XCB_UNMAP_NOTIFY:
            mapped(false);
            return;
        case XCB_CONFIGURE_NOTIFY:
            followFrame();
            return;
        case XCB_DESTROY_NOTIFY:
            window_ = XCB_NONE;
            giveUp();
            return;
        case XCB_ENTER_NOTIFY: {
            const auto& enter = eventAs<xcb_enter_notify_event_t>(event);
            followPointer(enter.root_x - enter.event_x, enter.root_y - enter.event_y);
            return;
        }
        default:
            face_.handle(event);
            return;
    }
}

void TrayHost::reparented(xcb_window_t parent) {
    if (parent == desk_.connection.root()) {
        giveUp();
        return;
    }
    isEmbedded_ = true;
    patience_.cancel();
    followFrame();
}

void TrayHost::mapped(bool isMapped) {
    isMapped_ = isMapped;
    if (!isMapped) {
        face_.stop();
        shown_.cancel();
        return;
    }
    received_ = 0;  // it has a place again, whatever its size
    // Not every panel tells of a size that it finds as it likes it.
    followFrame();
}

void TrayHost::followFrame() {
    if (!isShown()) return;
    const auto frame = frameOnScreen(desk_.connection, window_);
    if (!frame) return;
    frame_ = *frame;
    if (shown_) {
        desk_.ownWindows.move(window_, frame_);
    } else {
        shown_ = desk_.ownWindows.add(window_, frame_);
    }
    face_.updateSoon();
}

// Panels slide in and out with what is in them, without a word. Whoever is about to press comes in first.
void TrayHost::followPointer(int x, int y) {
    frame_.x = x;
    frame_.y = y;
    if (shown_) desk_.ownWindows.move(window_, frame_);
}

}  // namespace norvane
