#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/KeyEvent.h"
#include "platform/linux/X11Connection.h"

namespace norvane {

// Which of the keys that contents understand was pressed, by the core protocol's keyboard mapping. Main
// thread only. The mapping is asked for at the first key and again after it changed.
class Keyboard {
 public:
    // The connection outlives it.
    explicit Keyboard(X11Connection& connection);

    // None for every other key, and for one that is pressed together with Control, Alt or Super: those are
    // commands to somebody else.
    std::optional<KeyEvent> keyOf(const xcb_key_press_event_t& press);

 private:
    void load();

    X11Connection& connection_;
    unsigned columns_ = 0;
    std::vector<xcb_keysym_t> symbols_;  // `columns_` of them for each key code
    Cancellation events_;
};

}  // namespace norvane
