#pragma once

namespace norvane {

// What closes a popover besides its owner.
enum class PopoverBehavior : int {
    // Esc alone.
    applicationDefined = 0,
    // Esc, a press outside, and the keyboard going elsewhere.
    transient = 1,
    // Esc and a press outside.
    semitransient = 2,
};

}  // namespace norvane
