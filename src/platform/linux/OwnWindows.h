#pragma once

#include <xcb/xcb.h>
#include <list>
#include <memory>

#include "platform/Cancellation.h"
#include "platform/linux/PixelRect.h"

namespace norvane {

// The windows of ours that are on the screen, and where: a press on any of them is not a press elsewhere, and
// the keyboard that goes from one to another has not left us. Main thread only.
class OwnWindows {
 public:
    // The window is on the screen until the returned value goes away.
    [[nodiscard]] Cancellation add(xcb_window_t window, const PixelRect& frame);
    // It has another place now. Nothing for a window that was not added.
    void move(xcb_window_t window, const PixelRect& frame);

    bool cover(int x, int y) const;
    bool include(xcb_window_t window) const;

 private:
    struct Shown {
        xcb_window_t window;
        PixelRect frame;
    };
    std::shared_ptr<std::list<Shown>> shown_ = std::make_shared<std::list<Shown>>();
};

}  // namespace norvane
