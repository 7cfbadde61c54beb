#pragma once

#include <optional>

#include "drawing/Point.h"
#include "drawing/Rect.h"

namespace norvane {

// A borderless window above all others that shows one content. Main thread only. It is always as large as its
// content wishes; when the content grows or shrinks, the top left corner stays.
class PopoverWindow {
 public:
    virtual ~PopoverWindow() = default;

    // Lays the content out and puts the window in its place, without showing it yet.
    virtual void place(Point topLeft) = 0;
    // Shows the window, painted, in front.
    virtual void orderFront() = 0;
    // Gives it the keyboard; where it isn't shown yet, as soon as it is.
    virtual void makeKeyWindow() = 0;
    // Takes it off the screen. What it showed is freed.
    virtual void orderOut() = 0;

    // In points of the screen.
    virtual Rect frame() const = 0;
    // `setFrame:display:`; the size stays the content's.
    virtual void setFrame(const Rect& frame) = 0;
    // The part of the window's screen that panels leave free; none without a screen.
    virtual std::optional<Rect> visibleFrame() const = 0;
};

}  // namespace norvane
