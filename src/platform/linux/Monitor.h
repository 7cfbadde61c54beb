#pragma once

#include <span>

#include "platform/linux/PixelRect.h"

namespace norvane {

// A part of the X screen that one display shows, or that the user made up.
struct Monitor {
    PixelRect frame;
    bool isPrimary = false;

    bool operator==(const Monitor&) const = default;
};

// The smallest monitor that shows the pixel: where monitors were split by the user, the whole one stays
// listed as well. Outside of all, the nearest one. Null for none at all.
const Monitor* monitorAt(std::span<const Monitor> monitors, int x, int y);

// The primary monitor, or the first. Null for none at all.
const Monitor* primaryMonitor(std::span<const Monitor> monitors);

}  // namespace norvane
