#pragma once

#include "shell/PopoverBehavior.h"

namespace norvane {

// Whether the main popover is pinned, and what follows from it.
struct PinState {
    // The user has pinned it.
    bool isPinned = false;
    // Settings or info was opened on top of the pinned popover and is still up.
    bool isTemporarilySuspendingPin = false;

    PopoverBehavior mainPopoverBehavior() const {
        return isPinned ? PopoverBehavior::applicationDefined : PopoverBehavior::transient;
    }
    bool mayMainPopoverClose() const { return !isPinned || isTemporarilySuspendingPin; }

    bool operator==(const PinState&) const = default;
};

}  // namespace norvane
