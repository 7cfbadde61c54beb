#pragma once

#include <optional>
#include <string>
#include <vector>

#include "drawing/Rect.h"
#include "platform/AccessibleNumber.h"

namespace norvane {

enum class AccessibleRole {
    group,
    text,
    heading,
    image,
    button,
    link,
    toggle,       // a switch; `isOn` tells how it stands
    radioButton,  // one choice of several; `isOn` tells whether it is the chosen one
    spinButton,   // a number that goes up and down in steps
    meter,        // a part of a whole: a bar, a ring
    scrollArea,
    separator,
    progress,  // something is going on, nobody knows for how long
};

// What a surface tells those who do not see it, and the tests: a plain value.
struct AccessibleNode {
    AccessibleRole role = AccessibleRole::group;
    std::string name;
    // What a name does not tell: "42 %". Often empty.
    std::string value;
    // In the surface's own points.
    Rect frame;
    std::vector<AccessibleNode> children;
    // The same thing keeps its key from one tree to the next.
    std::string key = {};
    // What can be done with it, by name: "press", "increment". Often nothing.
    std::vector<std::string> actions = {};
    // Absent for what is neither on nor off, neither open nor closed.
    std::optional<bool> isOn = {};
    std::optional<bool> isExpanded = {};
    bool isEnabled = true;
    // Whether it can have the keyboard, and whether it has it.
    bool isFocusable = false;
    bool isFocused = false;
    // What the value says, as a number; absent where it is none.
    std::optional<AccessibleNumber> number = {};
    // It is to be said aloud, wherever the user is, whenever its name changes.
    bool isLive = false;

    bool operator==(const AccessibleNode&) const = default;
};

}  // namespace norvane
