#include "platform/linux/OutsidePresses.h"

#include <xcb/xinput.h>
#include <memory>

#include "platform/linux/X11Event.h"

namespace norvane {
OutsidePresses::OutsidePresses(X11Connection& connection, const OwnWindows& ownWindows)
    : connection_(connection), ownWindows_(ownWindows) {
    if (!isAvailable()) return;
    events_ =
        connection_.onEvent(connection_.root(), [this](const xcb_generic_event_t& event) { handle(event); });
}

Cancellation OutsidePresses::onPress(std::function<void()> observer) {
    auto added = std::make_shared<Cancellation>(pressed_.add(std::move(observer)));
    if (++*listeners_ == 1) select(true);
    return Cancellation([this, alive = std::weak_ptr(listeners_), added] {
        added->cancel();
        const auto listeners = alive.lock();
        if (listeners && --*listeners == 0) select(false);
    });
}

void OutsidePresses::select(bool wanted) {
    if (!isAvailable()) return;
    const struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                wanted ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                                       XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN}
                       : 0};
    xcb_input_xi_select_events(connection_.get(), connection_.root(), 1, &selection.head);
}

void OutsidePresses::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != XCB_GE_GENERIC) return;
    const auto& generic = eventAs<xcb_ge_generic_event_t>(event);
    if (generic.extension != connection_.input().majorOpcode) return;
    if (generic.event_type != XCB_INPUT_RAW_BUTTON_PRESS && generic.event_type != XCB_INPUT_RAW_TOUCH_BEGIN)
        return;
    if (generic.event_type == XCB_INPUT_RAW_BUTTON_PRESS &&
        isWheel(eventAs<xcb_input_raw_button_press_event_t>(event).detail)) {
        return;
    }
    // A raw event does not say where.
    const X11Reply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        connection_.get(), xcb_query_pointer(connection_.get(), connection_.root()), nullptr));
    if (!pointer || ownWindows_.cover(pointer->root_x, pointer->root_y)) return;
    pressed_.tell();
}

}  // namespace norvane
