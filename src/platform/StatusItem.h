#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "drawing/Rect.h"
#include "platform/Cancellation.h"
#include "platform/StatusMenuItem.h"
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
    // gets no pointer events: a press anywhere on the item is a press on the button. A panel may give less
    // room than was asked for, down to a square: the content is laid out into what there is.
    virtual void setContent(SurfaceContent* content) = 0;
    // Called on each click on the button.
    virtual void setAction(std::function<void()> action) = 0;
    // What a panel may show while the pointer rests on the item: plain text in one line.
    virtual void setToolTip(const std::string& text) = 0;
    // What a panel that has menus of its own for its items offers in the item's.
    virtual void setContextMenu(std::vector<StatusMenuItem> items) = 0;
    // Where the button is, in points of the screen; none without a button.
    virtual std::optional<Rect> buttonFrame() const = 0;
    // Told when there is a button where there was none, or one in another place.
    [[nodiscard]] virtual Cancellation onButtonDidAppear(std::function<void()> observer) = 0;
    // Whether a press on the button is known to be one from the start. Where a panel tells of it afterwards,
    // popovers have taken it for a press outside before the action is called.
    virtual bool knowsItsPresses() const = 0;
};

}  // namespace norvane
