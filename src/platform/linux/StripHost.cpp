#include "platform/linux/StripHost.h"

#include <xcb/xcb_icccm.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "drawing/PanelTones.h"
#include "platform/linux/X11Event.h"
#include "platform/linux/X11Properties.h"
#include "platform/linux/X11Windows.h"
#include "platform/StatusItem.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::nanoseconds kFirstWait = 250ms;
constexpr std::chrono::nanoseconds kLongestWait = 30s;
// Left alone for so long, it comes back at once again.
constexpr std::chrono::nanoseconds kCalm = 60s;

constexpr std::chrono::nanoseconds kOfferAgain = 2s;

constexpr std::uint32_t kOnAllDesktops = 0xFFFFFFFF;

}  // namespace

StripHost::StripHost(const Desk& desk, std::function<void()> clicked)
    : desk_(desk),
      face_(
          desk, [this] { update(); }, std::move(clicked)) {}

StripHost::~StripHost() {
    events_.cancel();
    face_.release();
    if (window_ != XCB_NONE) {
        xcb_destroy_window(desk_.connection.get(), window_);
        xcb_flush(desk_.connection.get());
    }
}

void StripHost::setLength(double points) {
    length_ = points > 0 && std::isfinite(points) ? points : kHeight;
    face_.updateSoon();
}

std::optional<Rect> StripHost::buttonFrame() const {
    if (!desk_.connection.isAlive()) return std::nullopt;
    // Until it is there, where it is going to be.
    return (isOffered_ && asked_ == wantedFrame() ? frame_ : wantedFrame()).inPoints(desk_.screen.scale());
}

PixelRect StripHost::wantedFrame() const {
    const PixelRect monitor = desk_.screen.primaryFrame();
    const double scale = desk_.screen.scale();
    const int width = std::clamp(pixelsCovering(length_, scale), 1, std::max(1, monitor.width));
    const int height = std::clamp(pixelsCovering(kHeight, scale), 1, std::max(1, monitor.height));
    return {monitor.x + monitor.width - width, monitor.y, width, height};
}

void StripHost::createWindow() {
    X11Connection& connection = desk_.connection;
    const X11Atoms& atoms = connection.atoms();
    window_ = xcb_generate_id(connection.get());
    const Color tone = panelTones(desk_.appearance.isDark()).strip;
    const std::array<std::uint32_t, 5> values{
        opaquePixel(tone.red, tone.green, tone.blue), 0, XCB_GRAVITY_NORTH_EAST,
        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_VISIBILITY_CHANGE |
            XCB_EVENT_MASK_STRUCTURE_NOTIFY,
        connection.opaqueVisual().colormap};
    xcb_create_window(
        connection.get(), connection.opaqueVisual().depth, window_, connection.root(),
        static_cast<std::int16_t>(asked_.x), static_cast<std::int16_t>(asked_.y),
        static_cast<std::uint16_t>(asked_.width), static_cast<std::uint16_t>(asked_.height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, connection.opaqueVisual().id,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
        values.data());
    events_ = connection.onEvent(window_, [this](const xcb_generic_event_t& event) { handle(event); });

    setNames(connection, window_, "Norvane");
    setProperty(connection, window_, atoms.netWmWindowType, XCB_ATOM_ATOM, {atoms.netWmWindowTypeDock});
    setProperty(connection, window_, atoms.netWmState, XCB_ATOM_ATOM,
                {atoms.netWmStateSticky, atoms.netWmStateAbove, atoms.netWmStateSkipTaskbar,
                 atoms.netWmStateSkipPager});
    setProperty(connection, window_, atoms.netWmDesktop, XCB_ATOM_CARDINAL, {kOnAllDesktops});
    // A window manager asks instead of cutting the connection; we stay.
    setProperty(connection, window_, atoms.wmProtocols, XCB_ATOM_ATOM, {atoms.wmDeleteWindow});
    xcb_icccm_wm_hints_t hints{};
    xcb_icccm_wm_hints_set_input(&hints, 0);
    xcb_icccm_wm_hints_set_normal(&hints);
    xcb_icccm_set_wm_hints(connection.get(), window_, &hints);
}

// _NET_WM_STRUT and _NET_WM_STRUT_PARTIAL of the Extended Window Manager Hints: from the edges of the whole
// screen, so that only a monitor with none above it can have its top row reserved.
void StripHost::reserveRow() {
    std::array<std::uint32_t, 12> strut{};
    if (desk_.screen.isPrimaryAtTop()) {
        strut[2] = static_cast<std::uint32_t>(std::max(0, asked_.y + asked_.height));
        strut[8] = static_cast<std::uint32_t>(std::max(0, asked_.x));
        strut[9] = static_cast<std::uint32_t>(std::max(0, asked_.x + asked_.width - 1));
    }
    const X11Atoms& atoms = desk_.connection.atoms();
    setProperty(desk_.connection, window_, atoms.netWmStrut, XCB_ATOM_CARDINAL,
                std::span<const std::uint32_t>(strut).first(4));
    setProperty(desk_.connection, window_, atoms.netWmStrutPartial, XCB_ATOM_CARDINAL,
                std::span<const std::uint32_t>(strut));

    xcb_size_hints_t hints{};
    xcb_icccm_size_hints_set_position(&hints, 1, asked_.x, asked_.y);
    xcb_icccm_size_hints_set_size(&hints, 1, asked_.width, asked_.height);
    xcb_icccm_size_hints_set_min_size(&hints, asked_.width, asked_.height);
    xcb_icccm_size_hints_set_max_size(&hints, asked_.width, asked_.height);
    xcb_icccm_size_hints_set_win_gravity(&hints, XCB_GRAVITY_STATIC);
    xcb_icccm_set_wm_normal_hints(desk_.connection.get(), window_, &hints);
}

void StripHost::update() {
    xcb_connection_t* const server = desk_.connection.get();
    const PixelRect wanted = wantedFrame();
    if (window_ == XCB_NONE || wanted != asked_) {
        asked_ = wanted;
        frame_ = wanted;
        if (window_ == XCB_NONE) {
            createWindow();
        } else {
            const std::array<std::uint32_t, 4> values{
                static_cast<std::uint32_t>(wanted.x), static_cast<std::uint32_t>(wanted.y),
                static_cast<std::uint32_t>(wanted.width), static_cast<std::uint32_t>(wanted.height)};
            xcb_configure_window(server, window_,
                                 XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                     XCB_CONFIG_WINDOW_HEIGHT,
                                 values.data());
            desk_.ownWindows.move(window_, frame_);
        }
        reserveRow();
    }
    if (isOffered_ && offerAgain_) return;  // taken off the screen
    const X11Surface::Form form{.window = window_,
                                .visual = desk_.connection.opaqueVisual(),
                                .width = asked_.width,
                                .height = asked_.height};
    if (!face_.paint(form, ground(), {length_, kHeight})) return;
    if (!std::exchange(isOffered_, true)) {
        xcb_map_window(server, window_);
        shown_ = desk_.ownWindows.add(window_, frame_);
    }
    face_.present();
}

std::vector<DisplayItem> StripHost::ground() const {
    const double scale = desk_.screen.scale();
    const PanelTones& tones = panelTones(desk_.appearance.isDark());
    const Size size{asked_.width / scale, asked_.height / scale};
    const double hair = 1 / scale;
    const auto fill = [](const char* key, const Rect& rect, const Color& color) {
        return DisplayItem{key, rect, FillShape{RoundedRect{rect, 0}, color}};
    };
    return {fill("//strip", {{}, size}, tones.strip),
            fill("//bottom edge", {{0, size.height - hair}, {size.width, hair}}, tones.stripEdge),
            fill("//left edge", {{0, 0}, {hair, size.height - hair}}, tones.stripEdge)};
}

void StripHost::handle(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
        case XCB_VISIBILITY_NOTIFY:
            face_.handle(event);
            if (face_.visibility() != XCB_VISIBILITY_UNOBSCURED) comeBackSoon();
            return;
        case XCB_MAP_NOTIFY:
            if (offerAgain_) face_.updateSoon();
            offerAgain_.cancel();
            return;
        case XCB_DESTROY_NOTIFY:
            events_.cancel();
            face_.release();
            window_ = XCB_NONE;
            isReparented_ = false;
            [[fallthrough]];
        case XCB_UNMAP_NOTIFY:
            offerAgainLater();
            return;
        case XCB_REPARENT_NOTIFY:
            isReparented_ = eventAs<xcb_reparent_notify_event_t>(event).parent != desk_.connection.root();
            return;
        case XCB_CONFIGURE_NOTIFY:
            followPlace(event);
            return;
        default:
            face_.handle(event);
            return;
    }
}

// A window manager may have put it elsewhere. Its own events tell of the root; the server's tell of the frame
// that the window manager put around the window.
void StripHost::followPlace(const xcb_generic_event_t& event) {
    const auto& told = eventAs<xcb_configure_notify_event_t>(event);
    PixelRect place{told.x, told.y, told.width, told.height};
    if (isReparented_ && !isSynthetic(event)) {
        const auto onScreen = frameOnScreen(desk_.connection, window_);
        if (!onScreen) return;
        place = *onScreen;
    }
    frame_ = place;
    desk_.ownWindows.move(window_, frame_);
}

// Somebody took it off the screen: without it there is no way to us. A window manager that adopts it shows it
// again by itself; whoever else did it is not fought with.
void StripHost::offerAgainLater() {
    face_.stop();
    offerAgain_ = desk_.mainQueue.after(kOfferAgain, [this] {
        shown_.cancel();
        isOffered_ = false;
        face_.updateSoon();
    });
}

void StripHost::comeBackSoon() {
    if (isComingBack_) return;
    if (desk_.clock.now() - cameBack_ > kCalm) nextWait_ = 0ns;
    isComingBack_ = true;
    comeBack_ = desk_.mainQueue.after(nextWait_, [this] {
        isComingBack_ = false;
        comeBack();
    });
}

void StripHost::comeBack() {
    // A window manager keeps docks where they belong, and full-screen windows before them.
    if (face_.visibility() == XCB_VISIBILITY_UNOBSCURED || desk_.screen.hasWindowManager()) return;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(desk_.connection.get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    cameBack_ = desk_.clock.now();
    nextWait_ = std::clamp(nextWait_ * 2, kFirstWait, kLongestWait);
}

}  // namespace norvane
