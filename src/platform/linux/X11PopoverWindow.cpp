#include "platform/linux/X11PopoverWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "drawing/PanelTones.h"
#include "platform/linux/X11Event.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kHoldRetry = 20ms;
constexpr int kHoldAttempts = 50;

// How far a wheel's notch moves, in points.
constexpr double kNotch = 40;
// Room for a panel that swings beyond the size that it moves to, in points.
constexpr double kSwing = 24;

// No window is farther away: coordinates of the protocol have 16 bits.
constexpr int kFarthestCoordinate = 32000;

double plainLength(double points) {
    return std::isfinite(points) && points > 0 ? points : 0;
}

Size plainSize(Size size) {
    return {plainLength(size.width), plainLength(size.height)};
}

// Turned away from the user, the wheel brings the contents down.
Point notch(std::uint8_t button) {
    switch (button) {
        case 4:
            return {0, -kNotch};
        case 5:
            return {0, kNotch};
        case 6:
            return {-kNotch, 0};
        default:
            return {kNotch, 0};
    }
}

}  // namespace

X11PopoverWindow::X11PopoverWindow(const Desk& desk, SurfaceContent& content, PopoverWindowObserver& observer)
    : desk_(desk),
      content_(content),
      observer_(observer),
      surface_(desk.connection, desk.layouts),
      frames_(desk.mainQueue, desk.clock, desk.light, [this] { repaint(); }) {
    appearance_ = desk_.appearance.onDidChange([this] {
        surface_.invalidate();  // the shadow changes with the panel
        repaintSoon();
    });
    screen_ = desk_.screen.onDidChange([this] { adapt(); });
    dropMemory_ = desk_.memory.onDrop([this] { surface_.dropCaches(); });
}

X11PopoverWindow::~X11PopoverWindow() {
    orderOut();
}

void X11PopoverWindow::place(const Rect& anchor) {
    if (stage_ == Stage::out) {
        stage_ = Stage::placed;
        content_.setChangeHandler([this] { contentChanged(); });
    }
    place_ = PopoverPlace(anchor, desk_.screen.visibleFrame({anchor.midX(), anchor.midY()}));
    measure();
    place_.centre(size_.width);
    // One that is on the screen stays as large as it is painted until the next picture.
    if (stage_ != Stage::shown) panel_ = room_ = pixelsOf(size_);
    repaintSoon();
}

void X11PopoverWindow::orderFront() {
    if (stage_ == Stage::out) place(place_.anchor());
    xcb_connection_t* const server = desk_.connection.get();
    if (stage_ == Stage::shown) {
        window_.raise();
        return;
    }
    stage_ = Stage::shown;
    keptMemory_ = desk_.memory.popoverShown();
    measure();
    panel_ = room_ = pixelsOf(size_);
    window_.create(windowFrame(), [this](const xcb_generic_event_t& event) { handle(event); });
    window_.cut(shape());
    paint();
    xcb_map_window(server, window_.id());
    surface_.present();
    shown_ = desk_.ownWindows.add(window_.id(), panelOnScreen());
    accessible_ = desk_.accessibleSurfaces.add({.content = [this] { return &content_; },
                                                .frame = [this] { return std::optional(panelOnScreen()); },
                                                .hasKeyboard = [this] { return focus_.has(); }});
    if (desk_.outsidePresses.isAvailable()) {
        outsidePresses_ = desk_.outsidePresses.onPress([this] { observer_.windowPressedOutside(); });
    } else {
        holdPointer(kHoldAttempts);
    }
    xcb_flush(server);
}

void X11PopoverWindow::orderOut() {
    if (stage_ == Stage::out) return;
    stage_ = Stage::out;
    accessible_.cancel();
    content_.setChangeHandler(nullptr);
    repaint_.cancel();
    isRepaintDue_ = false;
    outsidePresses_.cancel();
    focus_.giveBack();
    destroyWindow();
    keptMemory_.cancel();
    if (std::exchange(isPointerInside_, false)) content_.pointer({PointerEvent::Kind::leave, {}});
}

void X11PopoverWindow::setFrame(const Rect& frame) {
    place_.setLeft(frame.minX());
    if (window_.exists()) settle();
}

std::optional<Rect> X11PopoverWindow::visibleFrame() const {
    return desk_.screen.visibleFrame({place_.anchor().midX(), place_.anchor().midY()});
}

// --- Geometry
// ------------------------------------------------------------------------------------------------

void X11PopoverWindow::measure() {
    size_ = plainSize(content_.fittingSize(place_.most()));
}

X11PopoverWindow::Extent X11PopoverWindow::pixelsOf(Size size) const {
    const double scale = desk_.screen.scale();
    // Nothing larger than the screen can be seen, and memory is finite.
    const PixelRect bounds = desk_.screen.bounds();
    return {std::clamp(pixelsCovering(size.width, scale), 1, std::max(1, bounds.width)),
            std::clamp(pixelsCovering(size.height, scale), 1, std::max(1, bounds.height))};
}

// On its way the panel grows or shrinks within one window: another size of the window for each picture would
// have the server, and a compositor, make room as often.
void X11PopoverWindow::makeRoomFor(Size panel) {
    panel_ = pixelsOf(panel);
    const bool canBeCut = window_.isTranslucent() || desk_.connection.shape().isPresent;
    if (panel == size_ || !canBeCut) {
        room_ = panel_;
        return;
    }
    const Extent wanted = pixelsOf(size_);
    const int swing = pixelsCovering(kSwing, desk_.screen.scale());
    const auto roomFor = [swing](int room, int now, int then) {
        const int enough = std::max(room, then);
        return now <= enough ? enough : now + swing;
    };
    room_ = {roomFor(room_.width, panel_.width, wanted.width),
             roomFor(room_.height, panel_.height, wanted.height)};
}

int X11PopoverWindow::margin() const {
    return window_.isTranslucent() ? PopoverShape::shadowMargin(desk_.screen.scale()) : 0;
}

PixelRect X11PopoverWindow::frameOf(Extent extent) const {
    const double scale = desk_.screen.scale();
    const int edge = std::clamp(pixelsAt(place_.edge(), scale), -kFarthestCoordinate, kFarthestCoordinate);
    return {std::clamp(pixelsAt(place_.left(), scale), -kFarthestCoordinate, kFarthestCoordinate),
            place_.hangsUp() ? edge - extent.height : edge, extent.width, extent.height};
}

PixelRect X11PopoverWindow::panelFrame() const {
    return frameOf(panel_);
}

PixelRect X11PopoverWindow::windowFrame() const {
    const PixelRect room = frameOf(room_);
    const int around = margin();
    return {room.x - around, room.y - around, room.width + 2 * around, room.height + 2 * around};
}

PixelRect X11PopoverWindow::panelOnScreen() const {
    const auto& placed = window_.placed();
    if (!placed) return panelFrame();
    const PixelRect window = windowFrame();
    return panelFrame().moved(placed->x - window.x, placed->y - window.y);
}

PopoverShape X11PopoverWindow::shape() const {
    const PixelRect window = windowFrame();
    return {.panel = panelFrame().moved(-window.x, -window.y),
            .width = window.width,
            .height = window.height,
            .scale = desk_.screen.scale(),
            .isTranslucent = window_.isTranslucent(),
            .isDark = desk_.appearance.isDark()};
}

// --- The window
// ----------------------------------------------------------------------------------------------

void X11PopoverWindow::destroyWindow() {
    frames_.stop();
    holdPointer_.cancel();
    shown_.cancel();
    surface_.release();
    painted_ = {};
    window_.destroy();
    isUnmapped_ = false;
    visibility_ = XCB_VISIBILITY_UNOBSCURED;
}

void X11PopoverWindow::settle() {
    window_.setFrame(windowFrame(), place_.hangsUp());
    window_.cut(shape());
    desk_.ownWindows.move(window_.id(), panelOnScreen());
}

void X11PopoverWindow::moved() {
    desk_.ownWindows.move(window_.id(), panelOnScreen());
    desk_.accessibleSurfaces.changed();
}

// The screen has changed. A window keeps its kind for life: under another kind of screen it needs a new one.
void X11PopoverWindow::adapt() {
    if (stage_ == Stage::out || !desk_.connection.isAlive()) return;
    const Point middle{place_.anchor().midX(), place_.anchor().midY()};
    const auto free = desk_.screen.visibleFrame(middle);
    // At another scale, or on the monitors that are left, the same place may be out of sight, with the
    // keyboard in it.
    if (free) place_.follow(desk_.screen.monitorFrame(middle), *free, size_.width);
    if (stage_ == Stage::placed) {
        measure();
        return;
    }
    if (!window_.isOfAnotherKind()) {
        repaintSoon();
        return;
    }
    const bool hadFocus = focus_.isWanted();
    outsidePresses_.cancel();
    focus_.giveBack();  // so that the new window finds the one that had it before
    destroyWindow();
    stage_ = Stage::placed;
    orderFront();
    if (hadFocus) makeKeyWindow();
}

// --- Pictures
// ------------------------------------------------------------------------------------------------

bool X11PopoverWindow::canBeSeen() const {
    return visibility_ != XCB_VISIBILITY_FULLY_OBSCURED && !isUnmapped_;
}

void X11PopoverWindow::contentChanged() {
    repaintSoon();
    desk_.accessibleSurfaces.changed();
}

void X11PopoverWindow::repaintSoon() {
    if (stage_ != Stage::shown || std::exchange(isRepaintDue_, true)) return;
    repaint_ = desk_.mainQueue.after(0ns, [this] { repaint(); });
}

void X11PopoverWindow::repaint() {
    repaint_.cancel();
    isRepaintDue_ = false;
    if (stage_ != Stage::shown || !desk_.connection.isAlive()) return;
    // What cannot be seen is painted once it can be.
    if (!canBeSeen()) {
        frames_.stop();
        return;
    }
    if (!frames_.mayPaint() || !surface_.isReady()) return;
    paint();
    surface_.present();
}

void X11PopoverWindow::paint() {
    const MonotonicInstant at = desk_.clock.now();
    measure();
    DisplayList list = content_.displayList(size_, at);
    makeRoomFor(plainSize(list.size));
    const PopoverShape form = shape();
    surface_.prepare(
        {.window = window_.id(), .visual = window_.visual(), .width = form.width, .height = form.height});

    // All of the room gets a ground, so that a picture of a panel in motion differs from the last one by what
    // moved in it alone; the panel is cut from that.
    const PanelTones& tones = panelTones(form.isDark);
    const Rect all{{}, {room_.width / form.scale, room_.height / form.scale}};
    list.size = all.size;
    const Color ground = tones.panel.withOpacity(form.isTranslucent ? tones.panelOpacity : 1);
    list.items.insert(list.items.begin(), {"//panel", all, FillShape{RoundedRect{all, 0}, ground}});
    surface_.paint(
        std::move(list), {.scale = form.scale, .x = form.panel.x, .y = form.panel.y},
        form.differencesFrom(painted_),
        [&form](cairo_surface_t* image, std::span<const PixelRect> painted) { form.finish(image, painted); });
    painted_ = form;
    // Only now the window follows: what it grew by has been painted.
    settle();
    frames_.painted(at, content_.frameRate());
}

// --- What the user does
// --------------------------------------------------------------------------------------

void X11PopoverWindow::handle(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
        case XCB_MAP_NOTIFY:
            if (window_.followPlace()) moved();
            if (std::exchange(isUnmapped_, false)) repaintSoon();
            focus_.mapped(window_.id());
            return;
        case XCB_CONFIGURE_NOTIFY:
        case XCB_REPARENT_NOTIFY:
            if (window_.followPlace()) moved();
            return;
        case XCB_CLIENT_MESSAGE:
            told(eventAs<xcb_client_message_event_t>(event));
            return;
        case XCB_UNMAP_NOTIFY:
            isUnmapped_ = true;
            frames_.stop();
            return;
        case XCB_PROPERTY_NOTIFY:
            focus_.told(eventAs<xcb_property_notify_event_t>(event));
            return;
        case XCB_FOCUS_IN:
            focus_.came(eventAs<xcb_focus_in_event_t>(event));
            desk_.accessibleSurfaces.changed();
            return;
        case XCB_FOCUS_OUT:
            desk_.accessibleSurfaces.changed();
            if (!focus_.left(eventAs<xcb_focus_out_event_t>(event)) || stage_ != Stage::shown) return;
            // Presses on windows of others may not be told of at all where popovers are managed.
            if (desk_.connection.hasManagedPopovers()) {
                observer_.windowPressedOutside();
            } else {
                observer_.windowLostFocus();
            }
            return;
        case XCB_VISIBILITY_NOTIFY: {
            const bool couldBeSeen = canBeSeen();
            visibility_ = eventAs<xcb_visibility_notify_event_t>(event).state;
            if (!canBeSeen()) frames_.stop();
            if (!couldBeSeen && canBeSeen()) repaintSoon();
            return;
        }
        case XCB_MOTION_NOTIFY: {
            const auto& motion = eventAs<xcb_motion_notify_event_t>(event);
            if (window_.followPointer(motion)) moved();
            pointer(PointerEvent::Kind::move, motion.root_x, motion.root_y);
            return;
        }
        case XCB_ENTER_NOTIFY: {
            const auto& enter = eventAs<xcb_enter_notify_event_t>(event);
            if (window_.followPointer(enter)) moved();
            focus_.pointerCame();
            pointer(PointerEvent::Kind::move, enter.root_x, enter.root_y);
            return;
        }
        case XCB_LEAVE_NOTIFY:
            isPointerInside_ = false;
            content_.pointer({PointerEvent::Kind::leave, {}});
            return;
        case XCB_BUTTON_PRESS:
            pressed(eventAs<xcb_button_press_event_t>(event));
            return;
        case XCB_BUTTON_RELEASE: {
            const auto& release = eventAs<xcb_button_release_event_t>(event);
            if (release.detail == XCB_BUTTON_INDEX_1) {
                pointer(PointerEvent::Kind::release, release.root_x, release.root_y);
            }
            return;
        }
        case XCB_KEY_PRESS:
            keyPressed(eventAs<xcb_key_press_event_t>(event));
            return;
        default:
            if (surface_.handle(event)) repaintSoon();
            return;
    }
}

// Always the last thing that an event comes to: the content may close the window. The place on the screen
// counts, since the window may have moved under the pointer after the event was on its way.
void X11PopoverWindow::pointer(PointerEvent::Kind kind, int rootX, int rootY, Point by) {
    isPointerInside_ = true;
    const double scale = desk_.screen.scale();
    const PixelRect panel = panelOnScreen();
    content_.pointer({kind, {(rootX - panel.x) / scale, (rootY - panel.y) / scale}, by});
}

void X11PopoverWindow::pressed(const xcb_button_press_event_t& event) {
    if (window_.followPointer(event)) moved();
    // Only a held pointer brings presses from outside.
    if (!panelOnScreen().contains(event.root_x, event.root_y)) {
        const bool isElsewhere =
            !isWheel(event.detail) && !desk_.ownWindows.cover(event.root_x, event.root_y);
        if (isElsewhere && !desk_.outsidePresses.isAvailable()) observer_.windowPressedOutside();
        return;
    }
    if (event.detail == XCB_BUTTON_INDEX_1) {
        pointer(PointerEvent::Kind::press, event.root_x, event.root_y);
    } else if (isWheel(event.detail)) {
        pointer(PointerEvent::Kind::scroll, event.root_x, event.root_y, notch(event.detail));
    }
}

// A window manager that asks to close the window means what Escape means.
void X11PopoverWindow::told(const xcb_client_message_event_t& message) {
    const X11Atoms& atoms = desk_.connection.atoms();
    if (message.type == atoms.wmProtocols && message.format == 32 &&
        message.data.data32[0] == atoms.wmDeleteWindow) {
        observer_.windowEscapePressed();
    }
}

void X11PopoverWindow::keyPressed(const xcb_key_press_event_t& event) {
    const auto key = desk_.keyboard.keyOf(event);
    if (!key) return;
    // The content may close the window, which then must not be touched; but then it had a use for the key.
    if (!content_.key(*key) && key->key == KeyEvent::Key::escape) observer_.windowEscapePressed();
}

// The panel that was clicked may still hold the pointer itself.
void X11PopoverWindow::holdPointer(int attempts) {
    xcb_connection_t* const server = desk_.connection.get();
    const auto cookie = xcb_grab_pointer(
        server, 1, window_.id(),
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
            XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW,
        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    const X11Reply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(server, cookie, nullptr));
    if (!reply || reply->status == XCB_GRAB_STATUS_SUCCESS || attempts <= 1) return;
    holdPointer_ = desk_.mainQueue.after(kHoldRetry, [this, attempts] { holdPointer(attempts - 1); });
}

}  // namespace norvane
