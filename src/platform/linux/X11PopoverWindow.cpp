#include "platform/linux/X11PopoverWindow.h"

#include <xcb/shape.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "drawing/PanelTones.h"
#include "platform/linux/RoundedPath.h"
#include "platform/linux/SoftShadow.h"
#include "platform/linux/X11Event.h"
#include "platform/linux/X11Properties.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// Points.
constexpr double kCornerRadius = 10;
constexpr double kShadowMargin = 30;
constexpr double kShadowSoftness = 9;
constexpr double kShadowDrop = 5;

constexpr auto kHoldRetry = 20ms;
constexpr int kHoldAttempts = 50;

// Whether a change of the keyboard's focus is one of the window and lasts. A grab borrows the keyboard and
// gives it back; the other details tell of a part of the window, or of the pointer being over it while
// another has the focus.
bool isOfTheWindowItself(const xcb_focus_in_event_t& event) {
    if (event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB) return false;
    return event.detail != XCB_NOTIFY_DETAIL_INFERIOR && event.detail != XCB_NOTIFY_DETAIL_POINTER &&
           event.detail != XCB_NOTIFY_DETAIL_POINTER_ROOT && event.detail != XCB_NOTIFY_DETAIL_NONE;
}

double plainLength(double points) {
    return std::isfinite(points) && points > 0 ? points : 0;
}

// How far in from the side the rounded corner is, in the row that many pixels from the top.
int cornerInset(double radius, int row) {
    const double up = radius - (row + 0.5);
    if (up <= 0) return 0;
    return static_cast<int>(std::lround(radius - std::sqrt(std::max(0.0, radius * radius - up * up))));
}

}  // namespace

X11PopoverWindow::X11PopoverWindow(const Desk& desk, SurfaceContent& content, PopoverWindowObserver& observer)
    : desk_(desk), content_(content), observer_(observer), surface_(desk.connection, desk.layouts) {
    appearance_ = desk_.appearance.onDidChange([this] {
        surface_.invalidate();  // the shadow changes with the panel
        repaintSoon();
    });
    screen_ = desk_.screen.onDidChange([this] { adapt(); });
}

X11PopoverWindow::~X11PopoverWindow() {
    orderOut();
}

void X11PopoverWindow::place(Point topLeft) {
    topLeft_ = topLeft;
    if (stage_ == Stage::out) {
        stage_ = Stage::placed;
        content_.setChangeHandler([this] { repaintSoon(); });
    }
    measure();
    if (window_ == XCB_NONE) createWindow();
    form();
    settle();
}

void X11PopoverWindow::orderFront() {
    if (stage_ == Stage::out) place(topLeft_);
    xcb_connection_t* const server = desk_.connection.get();
    if (stage_ == Stage::shown) {
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(server, window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        return;
    }
    measure();
    form();
    stage_ = Stage::shown;
    paint();
    settle();
    xcb_map_window(server, window_);
    surface_.present();
    shown_ = desk_.ownWindows.add(window_, panelFrame());
    if (desk_.outsidePresses.isAvailable()) {
        outsidePresses_ = desk_.outsidePresses.onPress([this] { observer_.windowPressedOutside(); });
    } else {
        holdPointer(kHoldAttempts);
    }
    xcb_flush(server);
}

void X11PopoverWindow::makeKeyWindow() {
    wantsFocus_ = true;
    if (isMapped_) askForTheTime();
}

void X11PopoverWindow::orderOut() {
    if (stage_ == Stage::out) return;
    stage_ = Stage::out;
    content_.setChangeHandler(nullptr);
    repaint_.cancel();
    isRepaintDue_ = false;
    outsidePresses_.cancel();
    giveFocusBack();
    destroyWindow();
    wantsFocus_ = false;
    if (std::exchange(isPointerInside_, false)) content_.pointer({PointerEvent::Kind::leave, {}});
}

void X11PopoverWindow::setFrame(const Rect& frame) {
    topLeft_ = frame.origin;
    if (window_ != XCB_NONE) settle();
}

// The screen is the one where the middle of the top edge is: that is where a popover hangs.
std::optional<Rect> X11PopoverWindow::visibleFrame() const {
    return desk_.screen.visibleFrame({topLeft_.x + size_.width / 2, topLeft_.y});
}

PixelRect X11PopoverWindow::panelFrame() const {
    const double scale = desk_.screen.scale();
    // Nothing larger than the screen can be seen, and memory is finite.
    const PixelRect bounds = desk_.screen.bounds();
    return {pixelsAt(topLeft_.x, scale), pixelsAt(topLeft_.y, scale),
            std::clamp(pixelsCovering(size_.width, scale), 1, std::max(1, bounds.width)),
            std::clamp(pixelsCovering(size_.height, scale), 1, std::max(1, bounds.height))};
}

PixelRect X11PopoverWindow::windowFrame() const {
    const PixelRect panel = panelFrame();
    const int around = margin();
    return {panel.x - around, panel.y - around, panel.width + 2 * around, panel.height + 2 * around};
}

int X11PopoverWindow::margin() const {
    return isTranslucent_ ? pixelsCovering(kShadowMargin, desk_.screen.scale()) : 0;
}

void X11PopoverWindow::measure() {
    const Size size = content_.fittingSize();
    size_ = {plainLength(size.width), plainLength(size.height)};
}

void X11PopoverWindow::createWindow() {
    X11Connection& connection = desk_.connection;
    const X11Atoms& atoms = connection.atoms();
    isTranslucent_ = desk_.screen.isComposited() && connection.translucentVisual().id != XCB_NONE;
    const X11Connection::Visual& visual =
        isTranslucent_ ? connection.translucentVisual() : connection.opaqueVisual();
    formed_ = windowFrame();
    window_ = xcb_generate_id(connection.get());
    const Color tone = panelTones(desk_.appearance.isDark()).panel;
    const std::array<std::uint32_t, 6> values{
        isTranslucent_ ? 0 : opaquePixel(tone.red, tone.green, tone.blue),
        0,
        XCB_GRAVITY_NORTH_WEST,
        1,
        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
            XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_KEY_PRESS |
            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
            XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW,
        visual.colormap};
    xcb_create_window(connection.get(), visual.depth, window_, connection.root(),
                      static_cast<std::int16_t>(formed_.x), static_cast<std::int16_t>(formed_.y),
                      static_cast<std::uint16_t>(formed_.width), static_cast<std::uint16_t>(formed_.height),
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY |
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());
    events_ = connection.onEvent(window_, [this](const xcb_generic_event_t& event) { handle(event); });
    setNames(connection, window_, "Norvane");
    setProperty(connection, window_, atoms.netWmWindowType, XCB_ATOM_ATOM,
                {atoms.netWmWindowTypeDropdownMenu});
    cutShape();
}

void X11PopoverWindow::destroyWindow() {
    holdPointer_.cancel();
    shown_.cancel();
    events_.cancel();
    surface_.release();
    if (window_ == XCB_NONE) return;
    xcb_destroy_window(desk_.connection.get(), window_);  // lets the pointer go as well
    xcb_flush(desk_.connection.get());
    window_ = XCB_NONE;
    isMapped_ = false;
    hasFocus_ = false;
    visibility_ = XCB_VISIBILITY_UNOBSCURED;
}

void X11PopoverWindow::form() {
    const PixelRect wanted = windowFrame();
    const double scale = desk_.screen.scale();
    const int around = margin();
    const X11Connection::Visual& visual =
        isTranslucent_ ? desk_.connection.translucentVisual() : desk_.connection.opaqueVisual();
    const X11Surface::Form form{.window = window_,
                                .visual = visual,
                                .width = wanted.width,
                                .height = wanted.height,
                                .placement = {.scale = scale, .x = around, .y = around}};
    if (!isTranslucent_) {
        surface_.prepare(form);
        return;
    }
    const SoftShadow shadow({.panel = {around, around, wanted.width - 2 * around, wanted.height - 2 * around},
                             .radius = kCornerRadius * scale,
                             .softness = kShadowSoftness * scale,
                             .drop = kShadowDrop * scale,
                             .opacity = panelTones(desk_.appearance.isDark()).shadowOpacity});
    surface_.prepare(form, [shadow, form, scale](cairo_surface_t* image, std::span<const PixelRect> painted) {
        // What the content painted beyond the rounded corners goes, and the shadow shows there.
        const CairoContext context(cairo_create(image));
        for (const PixelRect& part : painted)
            cairo_rectangle(context.get(), part.x, part.y, part.width, part.height);
        cairo_clip(context.get());
        cairo_rectangle(context.get(), 0, 0, form.width, form.height);
        addRoundedPath(context.get(),
                       {{{static_cast<double>(form.placement.x), static_cast<double>(form.placement.y)},
                         {form.width - 2.0 * form.placement.x, form.height - 2.0 * form.placement.y}},
                        kCornerRadius * scale});
        cairo_set_fill_rule(context.get(), CAIRO_FILL_RULE_EVEN_ODD);
        cairo_set_operator(context.get(), CAIRO_OPERATOR_DEST_OUT);
        cairo_fill(context.get());
        cairo_surface_flush(image);
        for (const PixelRect& part : painted)
            shadow.paintUnder(image, part);
    });
}

void X11PopoverWindow::settle() {
    const PixelRect wanted = windowFrame();
    if (wanted == formed_) return;
    const bool isMoveOnly = wanted.width == formed_.width && wanted.height == formed_.height;
    formed_ = wanted;
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(wanted.x), static_cast<std::uint32_t>(wanted.y),
        static_cast<std::uint32_t>(wanted.width), static_cast<std::uint32_t>(wanted.height)};
    xcb_configure_window(
        desk_.connection.get(), window_,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
        values.data());
    if (!isMoveOnly) cutShape();
    desk_.ownWindows.move(window_, panelFrame());
}

// Without a compositor the corners are cut off; with one, the shadow lets the pointer through.
void X11PopoverWindow::cutShape() {
    if (isTranslucent_) {
        // The shadow is ours: others would take the window for larger than the panel, and put a rectangle
        // around it.
        const auto around = static_cast<std::uint32_t>(margin());
        const X11Atoms& atoms = desk_.connection.atoms();
        setProperty(desk_.connection, window_, atoms.comptonShadow, XCB_ATOM_CARDINAL, {0});
        setProperty(desk_.connection, window_, atoms.gtkFrameExtents, XCB_ATOM_CARDINAL,
                    {around, around, around, around});
    }
    if (!desk_.connection.shape().isPresent) return;
    const auto rectangle = [](int x, int y, int width, int height) {
        return xcb_rectangle_t{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                               static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
    };
    const int around = margin();
    const int width = formed_.width - 2 * around;
    const int height = formed_.height - 2 * around;
    std::vector<xcb_rectangle_t> rows;
    if (isTranslucent_) {
        rows.push_back(rectangle(around, around, width, height));
    } else {
        const double radius = std::min(kCornerRadius * desk_.screen.scale(), std::min(width, height) / 2.0);
        const int corner = static_cast<int>(std::floor(radius));
        for (int i = 0; i < corner; ++i) {
            const int inset = cornerInset(radius, i);
            rows.push_back(rectangle(inset, i, width - 2 * inset, 1));
        }
        if (height > 2 * corner) rows.push_back(rectangle(0, corner, width, height - 2 * corner));
        for (int i = corner - 1; i >= 0; --i) {
            const int inset = cornerInset(radius, i);
            rows.push_back(rectangle(inset, height - 1 - i, width - 2 * inset, 1));
        }
    }
    xcb_shape_rectangles(
        desk_.connection.get(), XCB_SHAPE_SO_SET, isTranslucent_ ? XCB_SHAPE_SK_INPUT : XCB_SHAPE_SK_BOUNDING,
        XCB_CLIP_ORDERING_YX_BANDED, window_, 0, 0, static_cast<std::uint32_t>(rows.size()), rows.data());
}

// The screen has changed. A window keeps its kind for life: under another kind of screen it needs a new one.
void X11PopoverWindow::adapt() {
    if (stage_ == Stage::out || !desk_.connection.isAlive()) return;
    const bool isOtherKind = isTranslucent_ != (desk_.screen.isComposited() &&
                                                desk_.connection.translucentVisual().id != XCB_NONE);
    if (!isOtherKind) {
        stayOnScreen();
        repaintSoon();
        return;
    }
    const bool wasShown = stage_ == Stage::shown;
    const bool hadFocus = hasFocus_ || wantsFocus_;
    outsidePresses_.cancel();
    giveFocusBack();  // so that the new window finds the one that had it before
    destroyWindow();
    stage_ = Stage::placed;
    createWindow();
    form();
    if (!wasShown) return;
    orderFront();
    if (hadFocus) makeKeyWindow();
}

// At another scale, or on the monitors that are left, the same place may be out of sight, with the keyboard
// in it.
void X11PopoverWindow::stayOnScreen() {
    const auto free = visibleFrame();
    if (!free) return;
    const auto within = [](double at, double length, double from, double to) {
        return std::max(from, std::min(at, to - length));
    };
    topLeft_ = {within(topLeft_.x, size_.width, free->minX(), free->maxX()),
                within(topLeft_.y, size_.height, free->minY(), free->maxY())};
}

void X11PopoverWindow::repaintSoon() {
    if (stage_ != Stage::shown || std::exchange(isRepaintDue_, true)) return;
    repaint_ = desk_.mainQueue.after(0ns, [this] {
        isRepaintDue_ = false;
        repaint();
    });
}

void X11PopoverWindow::repaint() {
    if (stage_ != Stage::shown || !desk_.connection.isAlive()) return;
    measure();
    form();
    const bool isPainted = paint();
    settle();
    if (isPainted) surface_.present();
}

bool X11PopoverWindow::paint() {
    // What cannot be seen is painted once it can be.
    if (visibility_ == XCB_VISIBILITY_FULLY_OBSCURED) return false;
    return surface_.paint(picture());
}

DisplayList X11PopoverWindow::picture() {
    const double scale = desk_.screen.scale();
    const PanelTones& tones = panelTones(desk_.appearance.isDark());
    const PixelRect panel = panelFrame();
    const Rect all{{}, {panel.width / scale, panel.height / scale}};
    DisplayList list = content_.displayList(size_, desk_.clock.now());
    list.size = all.size;
    // The corners are cut from all that is painted, so the ground has none.
    const double opacity = isTranslucent_ ? tones.panelOpacity : 1;
    list.items.insert(list.items.begin(),
                      {"//panel", all, FillShape{{all, 0}, tones.panel.withOpacity(opacity)}});
    const double hair = 1 / scale;
    const auto line = [&](const char* key, double inset, const Color& color) {
        const Rect middle = all.inset(Insets::all(inset + hair / 2));
        list.items.push_back(
            {key, all, StrokeShape{{middle, kCornerRadius - inset - hair / 2}, hair, color}});
    };
    line("//rim", hair, tones.rim);
    line("//outline", 0, tones.outline);
    return list;
}

void X11PopoverWindow::handle(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
        case XCB_MAP_NOTIFY:
            isMapped_ = true;
            if (wantsFocus_) askForTheTime();
            return;
        case XCB_PROPERTY_NOTIFY: {
            const auto& changed = eventAs<xcb_property_notify_event_t>(event);
            if (changed.atom == XCB_ATOM_WM_NAME && wantsFocus_ && isMapped_) takeFocus(changed.time);
            return;
        }
        case XCB_FOCUS_IN:
            if (isOfTheWindowItself(eventAs<xcb_focus_in_event_t>(event))) hasFocus_ = true;
            return;
        case XCB_FOCUS_OUT:
            focusLeft(eventAs<xcb_focus_out_event_t>(event));
            return;
        case XCB_VISIBILITY_NOTIFY: {
            const int before =
                std::exchange(visibility_, eventAs<xcb_visibility_notify_event_t>(event).state);
            if (before == XCB_VISIBILITY_FULLY_OBSCURED && visibility_ != before) repaintSoon();
            return;
        }
        case XCB_MOTION_NOTIFY: {
            const auto& motion = eventAs<xcb_motion_notify_event_t>(event);
            pointer(PointerEvent::Kind::move, motion.event_x, motion.event_y);
            return;
        }
        case XCB_ENTER_NOTIFY: {
            const auto& enter = eventAs<xcb_enter_notify_event_t>(event);
            if (wantsFocus_ && isMapped_) askForTheTime();
            pointer(PointerEvent::Kind::move, enter.event_x, enter.event_y);
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
                pointer(PointerEvent::Kind::release, release.event_x, release.event_y);
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

// Always the last thing that an event comes to: the content may close the window.
void X11PopoverWindow::pointer(PointerEvent::Kind kind, int x, int y) {
    isPointerInside_ = true;
    const double scale = desk_.screen.scale();
    content_.pointer({kind, {(x - margin()) / scale, (y - margin()) / scale}});
}

void X11PopoverWindow::pressed(const xcb_button_press_event_t& event) {
    // Only a held pointer brings presses from outside.
    if (!panelFrame().contains(event.root_x, event.root_y)) {
        const bool isElsewhere =
            !isWheel(event.detail) && !desk_.ownWindows.cover(event.root_x, event.root_y);
        if (isElsewhere && !desk_.outsidePresses.isAvailable()) observer_.windowPressedOutside();
        return;
    }
    if (event.detail == XCB_BUTTON_INDEX_1) pointer(PointerEvent::Kind::press, event.event_x, event.event_y);
}

void X11PopoverWindow::keyPressed(const xcb_key_press_event_t& event) {
    const auto key = desk_.keyboard.keyOf(event);
    if (!key) return;
    // The content may close the window, which then must not be touched; but then it had a use for the key.
    if (!content_.key(*key) && key->key == KeyEvent::Key::escape) observer_.windowEscapePressed();
}

void X11PopoverWindow::focusLeft(const xcb_focus_out_event_t& event) {
    if (!isOfTheWindowItself(event)) return;
    if (!std::exchange(hasFocus_, false) || stage_ != Stage::shown) return;
    xcb_connection_t* const server = desk_.connection.get();
    const auto focusCookie = xcb_get_input_focus(server);
    const auto pointerCookie = xcb_query_pointer(server, desk_.connection.root());
    const X11Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(server, focusCookie, nullptr));
    const X11Reply<xcb_query_pointer_reply_t> at(xcb_query_pointer_reply(server, pointerCookie, nullptr));
    if (!focus || !at) return;
    if (desk_.ownWindows.include(focus->focus)) return;
    // A panel that takes the keyboard while our item is being clicked: the click itself says what to do.
    if ((at->mask & XCB_KEY_BUT_MASK_BUTTON_1) != 0 && desk_.ownWindows.cover(at->root_x, at->root_y)) return;
    // Where the keyboard follows the pointer, it went along on the pointer's way: nobody chose another
    // window, and presses outside are told otherwise. It is wanted again when the pointer comes.
    if (desk_.outsidePresses.isAvailable() && isUnder(*at, focus->focus)) {
        wantsFocus_ = true;
        return;
    }
    observer_.windowLostFocus();
}

// Whether that window is what the pointer is over, with no button pressed.
bool X11PopoverWindow::isUnder(const xcb_query_pointer_reply_t& pointer, xcb_window_t window) const {
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

// Focus is asked for and given back with the server's time of the request, so that a choice that the user, or
// the window manager for him, made in between wins. An empty change of a property tells the time.
void X11PopoverWindow::askForTheTime() {
    xcb_change_property(desk_.connection.get(), XCB_PROP_MODE_APPEND, window_, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, 0, nullptr);
}

void X11PopoverWindow::takeFocus(xcb_timestamp_t time) {
    wantsFocus_ = false;
    xcb_connection_t* const server = desk_.connection.get();
    const X11Reply<xcb_get_input_focus_reply_t> before(
        xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    if (!before) return;
    if (before->focus != window_) {
        // To one of our own windows it would go back when that may be gone.
        focusBefore_ = desk_.ownWindows.include(before->focus) ? xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}
                                                               : before->focus;
    }
    focusTime_ = time;
    hasFocus_ = true;  // already: it may be given back before the server's word is here
    xcb_set_input_focus(server, XCB_INPUT_FOCUS_POINTER_ROOT, window_, time);
}

void X11PopoverWindow::giveFocusBack() {
    if (!hasFocus_) return;
    xcb_set_input_focus(desk_.connection.get(), XCB_INPUT_FOCUS_POINTER_ROOT, focusBefore_, focusTime_);
}

// The panel that was clicked may still hold the pointer itself.
void X11PopoverWindow::holdPointer(int attempts) {
    xcb_connection_t* const server = desk_.connection.get();
    const auto cookie = xcb_grab_pointer(
        server, 1, window_,
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
            XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW,
        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    const X11Reply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(server, cookie, nullptr));
    if (!reply || reply->status == XCB_GRAB_STATUS_SUCCESS || attempts <= 1) return;
    holdPointer_ = desk_.mainQueue.after(kHoldRetry, [this, attempts] { holdPointer(attempts - 1); });
}

}  // namespace norvane
