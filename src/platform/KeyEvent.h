#pragma once

namespace norvane {

// A key pressed on a surface that has the keyboard.
struct KeyEvent {
    enum class Key {
        escape,
        tab,
        backTab,
        space,
        returnKey,
        up,
        down,
        left,
        right,
        pageUp,
        pageDown,
        home,
        end,
    };

    Key key = Key::escape;

    bool operator==(const KeyEvent&) const = default;
};

}  // namespace norvane
