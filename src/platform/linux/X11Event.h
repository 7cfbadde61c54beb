#pragma once

#include <xcb/xcb.h>
#include <cstdint>

namespace norvane {

// The kind of an event, whoever sent it.
inline int typeOf(const xcb_generic_event_t& event) {
    return event.response_type & 0x7F;
}
// Whether another program made the event up, as window managers do to tell where a window is.
inline bool isSynthetic(const xcb_generic_event_t& event) {
    return (event.response_type & 0x80) != 0;
}

// Buttons 4 to 7 are the turns of a wheel.
inline bool isWheel(std::uint32_t button) {
    return button >= 4 && button <= 7;
}

// The event as what its type says it is.
template <typename Event>
const Event& eventAs(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

}  // namespace norvane
