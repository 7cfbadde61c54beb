#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "drawing/Rect.h"
#include "platform/linux/Monitor.h"
#include "platform/linux/X11Connection.h"
#include "platform/Observers.h"

namespace norvane {

// The screen: its scale, its monitors, what panels leave free of it and whether a compositor runs. Followed
// as it changes; answers come from memory but where said otherwise. Main thread only.
class X11Screen {
 public:
    // The connection outlives the screen.
    explicit X11Screen(X11Connection& connection);

    // Pixels per point.
    double scale() const { return scale_; }
    // Where the status item goes: the primary monitor, or the first; the whole screen without monitors.
    PixelRect primaryFrame() const;
    // Whether that place is covered by no other monitor above it, so that a panel may reserve its top row.
    bool isPrimaryAtTop() const;
    // In points: what panels leave free of the smallest monitor at that place. None once the server is gone.
    std::optional<Rect> visibleFrame(Point at) const;
    // In points: the smallest monitor at that place, or the nearest one.
    Rect monitorFrame(Point at) const;
    // The whole screen, in pixels from 0,0.
    PixelRect bounds() const { return bounds_; }
    // Whether windows may be translucent.
    bool isComposited() const { return isComposited_; }
    // Whether a window manager runs. Asks the server and waits for the answer.
    bool hasWindowManager() const;

    // Told after any of it changed.
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) {
        return changed_.add(std::move(observer));
    }

 private:
    struct Questions {
        bool resources = false;
        bool workArea = false;
        bool monitors = false;
        bool compositor = false;
    };
    PixelRect monitorPixels(Point at) const;
    void handle(const xcb_generic_event_t& event);
    // Asks anew, in one exchange, and tells if an answer differs.
    void ask(const Questions& questions);

    X11Connection& connection_;
    double scale_ = 1;
    PixelRect bounds_;
    std::vector<Monitor> monitors_;
    std::optional<PixelRect> workArea_;
    bool isComposited_ = false;
    Observers<> changed_;
    Cancellation events_;
};

}  // namespace norvane
