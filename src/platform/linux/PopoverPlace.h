#pragma once

#include <optional>

#include "drawing/Rect.h"
#include "drawing/Size.h"

namespace norvane {

// Where a popover hangs: from the lower edge of its anchor, or from the upper one where the anchor is in the
// lower half of its screen. That edge stays, however the popover grows or shrinks; it moves to and fro alone.
// In points of the screen. Any numbers may be given.
class PopoverPlace {
 public:
    PopoverPlace() = default;
    // `free` is what panels leave free of the anchor's monitor; none without a screen.
    PopoverPlace(const Rect& anchor, const std::optional<Rect>& free);

    const Rect& anchor() const { return anchor_; }
    bool hangsUp() const { return hangsUp_; }
    // The edge that stays, and what is left of it at the other end.
    double edge() const;
    Size most() const;

    void centre(double width);
    void setLeft(double left);
    double left() const { return left_; }
    Rect frame(Size size) const;

    // The screen is another one now: the anchor, and a popover of that width, are moved into what there is of
    // the monitor.
    void follow(const Rect& monitor, const Rect& free, double width);

 private:
    Rect anchor_;
    std::optional<Rect> free_;
    bool hangsUp_ = false;
    double left_ = 0;
};

}  // namespace norvane
