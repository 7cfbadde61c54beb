#include "platform/linux/OwnWindows.h"

#include <algorithm>

namespace norvane {

Cancellation OwnWindows::add(xcb_window_t window, const PixelRect& frame) {
    const auto place = shown_->insert(shown_->end(), {window, frame});
    return Cancellation([shown = std::weak_ptr(shown_), place] {
        if (const auto alive = shown.lock()) alive->erase(place);
    });
}

void OwnWindows::move(xcb_window_t window, const PixelRect& frame) {
    for (Shown& shown : *shown_) {
        if (shown.window == window) shown.frame = frame;
    }
}

bool OwnWindows::cover(int x, int y) const {
    return std::any_of(shown_->begin(), shown_->end(),
                       [&](const Shown& shown) { return shown.frame.contains(x, y); });
}

bool OwnWindows::include(xcb_window_t window) const {
    return std::any_of(shown_->begin(), shown_->end(),
                       [&](const Shown& shown) { return shown.window == window; });
}

}  // namespace norvane
