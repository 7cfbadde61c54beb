#pragma once

#include <optional>

#include "drawing/Rect.h"

namespace norvane {

// A borderless window above all others that shows one content. Main thread only. It is as large as its
// content wishes, as far as the screen has room for it; when the content grows or shrinks, the edge at the
// anchor stays.
class PopoverWindow {
 public:
    virtual ~PopoverWindow() = default;

    // Between the anchor and the window, in points.
    static constexpr double kGap = 6;

    // Lays the content out and puts the window in its place, without showing it yet: in the middle below the
    // anchor, or above it where the anchor is in the lower half of its screen.
    virtual void place(const Rect& anchor) = 0;
    // Shows the window, painted, in front.
    virtual void orderFront() = 0;
    // Gives it the keyboard; where it isn't shown yet, as soon as it is.
    virtual void makeKeyWindow() = 0;
    // Takes it off the screen. What it showed is freed.
    virtual void orderOut() = 0;

    // In points of the screen.
    virtual Rect frame() const = 0;
    // `setFrame:display:`; size and edge stay what they are, so that it moves to and fro alone.
    virtual void setFrame(const Rect& frame) = 0;
    // The part of the window's screen that panels leave free; none without a screen.
    virtual std::optional<Rect> visibleFrame() const = 0;
};

}  // namespace norvane
