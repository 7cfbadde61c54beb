#pragma once

#include <functional>
#include <optional>

#include "drawing/Rect.h"
#include "platform/SurfaceContent.h"

namespace norvane {

// The item in the panel, `NSStatusItem` with its button. Main thread only. It may have no button for a while
// (no panel is running): the operations are then remembered and take effect when one appears.
class StatusItem {
 public:
    // As wide as it is high.
    static constexpr double kSquareLength = -2.0;

    virtual ~StatusItem() = default;

    // The width in points, or `kSquareLength`.
    virtual void setLength(double points) = 0;
    // What the button shows, as large as the button; null for nothing. The content outlives its use here. It
    // gets no pointer events: a press anywhere on the item is a press on the button.
    virtual void setContent(SurfaceContent* content) = 0;
    // Called on each click on the button.
    virtual void setAction(std::function<void()> action) = 0;
    // Where the button is, in points of the screen; none without a button.
    virtual std::optional<Rect> buttonFrame() const = 0;
};

}  // namespace norvane
