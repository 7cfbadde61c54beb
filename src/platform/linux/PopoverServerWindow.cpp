#include "platform/linux/PopoverServerWindow.h"

#include <xcb/shape.h>
#include <xcb/xcb_icccm.h>
#include <array>
#include <utility>
#include <vector>

#include "drawing/PanelTones.h"
#include "platform/linux/X11Properties.h"
#include "platform/linux/X11Windows.h"

namespace norvane {

bool PopoverServerWindow::canBeTranslucent() const {
    return desk_.screen.isComposited() && desk_.connection.translucentVisual().id != XCB_NONE;
}

const X11Connection::Visual& PopoverServerWindow::visual() const {
    return isTranslucent() ? desk_.connection.translucentVisual() : desk_.connection.opaqueVisual();
}

void PopoverServerWindow::create(const PixelRect& frame,
                                 std::function<void(const xcb_generic_event_t&)> onEvent) {
    destroy();
    X11Connection& connection = desk_.connection;
    isTranslucent_ = canBeTranslucent();
    const X11Connection::Visual& visual = this->visual();
    asked_ = frame;
    id_ = xcb_generate_id(connection.get());
    const Color tone = panelTones(desk_.appearance.isDark()).panel;
    const std::array<std::uint32_t, 5> values{
        isTranslucent_ ? 0 : opaquePixel(tone.red, tone.green, tone.blue), 0,
        connection.hasManagedPopovers() ? 0u : 1u,
        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
            XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_KEY_PRESS |
            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
            XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW,
        visual.colormap};
    xcb_create_window(connection.get(), visual.depth, id_, connection.root(),
                      static_cast<std::int16_t>(asked_.x), static_cast<std::int16_t>(asked_.y),
                      static_cast<std::uint16_t>(asked_.width), static_cast<std::uint16_t>(asked_.height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                          XCB_CW_COLORMAP,
                      values.data());
    events_ = connection.onEvent(id_, std::move(onEvent));
    describe();
}

void PopoverServerWindow::describe() {
    X11Connection& connection = desk_.connection;
    const X11Atoms& atoms = connection.atoms();
    setNames(connection, id_, "Norvane");
    if (!connection.hasManagedPopovers()) {
        setProperty(connection, id_, atoms.netWmWindowType, XCB_ATOM_ATOM,
                    {atoms.netWmWindowTypeDropdownMenu});
        return;
    }
    // Of the kinds of windows that compositors give the keyboard to, this one stays where it asked to be.
    setProperty(connection, id_, atoms.netWmWindowType, XCB_ATOM_ATOM, {atoms.netWmWindowTypeDialog});
    setProperty(connection, id_, atoms.netWmState, XCB_ATOM_ATOM,
                {atoms.netWmStateAbove, atoms.netWmStateSkipTaskbar, atoms.netWmStateSkipPager});
    // Motif's hints: of what they may tell, the decorations, and none of these.
    static constexpr std::uint32_t kTellsDecorations = 2;
    setProperty(connection, id_, atoms.motifWmHints, atoms.motifWmHints, {kTellsDecorations, 0, 0, 0, 0});
    // To be asked instead of cut off.
    setProperty(connection, id_, atoms.wmProtocols, XCB_ATOM_ATOM, {atoms.wmDeleteWindow});
    xcb_icccm_wm_hints_t hints{};
    xcb_icccm_wm_hints_set_input(&hints, 1);
    xcb_icccm_wm_hints_set_normal(&hints);
    xcb_icccm_set_wm_hints(connection.get(), id_, &hints);
    sayWhereItIsWanted();
}

void PopoverServerWindow::sayWhereItIsWanted() {
    xcb_size_hints_t hints{};
    xcb_icccm_size_hints_set_position(&hints, 1, asked_.x, asked_.y);
    hints.flags |= XCB_ICCCM_SIZE_HINT_P_POSITION;
    xcb_icccm_size_hints_set_size(&hints, 1, asked_.width, asked_.height);
    xcb_icccm_size_hints_set_win_gravity(&hints, XCB_GRAVITY_STATIC);
    xcb_icccm_set_wm_normal_hints(desk_.connection.get(), id_, &hints);
}

void PopoverServerWindow::destroy() {
    events_.cancel();
    placed_.reset();
    cut_ = {};
    if (!exists()) return;
    xcb_destroy_window(desk_.connection.get(), id_);  // lets the pointer go as well
    xcb_flush(desk_.connection.get());
    id_ = XCB_NONE;
}

void PopoverServerWindow::raise() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(desk_.connection.get(), id_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

void PopoverServerWindow::setFrame(const PixelRect& frame, bool hangsUp) {
    if (frame == asked_) return;
    const std::uint32_t gravity = hangsUp ? XCB_GRAVITY_SOUTH_WEST : XCB_GRAVITY_NORTH_WEST;
    xcb_change_window_attributes(desk_.connection.get(), id_, XCB_CW_BIT_GRAVITY, &gravity);
    // A place that did not change is not asked for again: the user may have moved the window.
    const bool isMoved = frame.x != asked_.x || frame.y != asked_.y;
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(frame.x), static_cast<std::uint32_t>(frame.y),
        static_cast<std::uint32_t>(frame.width), static_cast<std::uint32_t>(frame.height)};
    const std::uint16_t size = XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
    asked_ = frame;
    if (desk_.connection.hasManagedPopovers()) sayWhereItIsWanted();
    xcb_configure_window(
        desk_.connection.get(), id_,
        isMoved ? static_cast<std::uint16_t>(XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | size) : size,
        isMoved ? values.data() : values.data() + 2);
}

// Without a compositor the panel is cut out of the window; with one, the shadow lets the pointer through.
void PopoverServerWindow::cut(const PopoverShape& shape) {
    const PopoverShape before = std::exchange(cut_, shape);
    if (shape == before) return;
    const bool isOtherWindow =
        shape.width != before.width || shape.height != before.height || shape.scale != before.scale;
    if (isTranslucent_ && isOtherWindow) {
        // The shadow is ours: others would take the window for larger than the panel, and put a rectangle
        // around it.
        const auto around = static_cast<std::uint32_t>(PopoverShape::shadowMargin(shape.scale));
        const X11Atoms& atoms = desk_.connection.atoms();
        setProperty(desk_.connection, id_, atoms.comptonShadow, XCB_ATOM_CARDINAL, {0});
        setProperty(desk_.connection, id_, atoms.gtkFrameExtents, XCB_ATOM_CARDINAL,
                    {around, around, around, around});
    }
    if (!desk_.connection.shape().isPresent) return;
    const std::vector<xcb_rectangle_t> rows = shape.rows();
    xcb_shape_rectangles(
        desk_.connection.get(), XCB_SHAPE_SO_SET, isTranslucent_ ? XCB_SHAPE_SK_INPUT : XCB_SHAPE_SK_BOUNDING,
        XCB_CLIP_ORDERING_YX_BANDED, id_, 0, 0, static_cast<std::uint32_t>(rows.size()), rows.data());
}

bool PopoverServerWindow::followPlace() {
    if (!desk_.connection.hasManagedPopovers()) return false;
    const auto frame = frameOnScreen(desk_.connection, id_);
    return frame && putAt(frame->x, frame->y);
}

// Only a managed window: nobody moves another but us.
bool PopoverServerWindow::putAt(int x, int y) {
    if (!desk_.connection.hasManagedPopovers()) return false;
    placed_ = Corner{x, y};
    return true;
}

}  // namespace norvane
