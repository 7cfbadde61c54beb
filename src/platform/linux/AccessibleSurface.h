#pragma once

#include <functional>
#include <optional>

#include "platform/linux/PixelRect.h"
#include "platform/SurfaceContent.h"

namespace norvane {

// A surface on the screen, as those who tell of it to assistive technologies know it. The functions are asked
// as long as it is there.
struct AccessibleSurface {
    // Null for nothing.
    std::function<SurfaceContent*()> content;
    // Where it stands on the screen; none while it is nowhere that we know of.
    std::function<std::optional<PixelRect>()> frame;
    std::function<bool()> hasKeyboard;
    // Where all of it is one button: what a press on it does. Empty for others.
    std::function<void()> press = {};
};

}  // namespace norvane
