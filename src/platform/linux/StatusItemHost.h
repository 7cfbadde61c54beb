#pragma once

#include <optional>
#include <string>
#include <vector>

#include "drawing/Rect.h"
#include "platform/StatusMenuItem.h"
#include "platform/SurfaceContent.h"

namespace norvane {

// What carries the status item: a place in somebody's panel, or one of our own. Main thread only. A click on
// it calls the function that it was made with.
class StatusItemHost {
 public:
    virtual ~StatusItemHost() = default;

    // The width in points, or `StatusItem::kSquareLength`.
    virtual void setLength(double points) = 0;
    // Null for nothing. The content outlives its use here.
    virtual void setContent(SurfaceContent* content) = 0;
    // Only panels that show such themselves have a use for them.
    virtual void setToolTip(const std::string&) {}
    virtual void setContextMenu(const std::vector<StatusMenuItem>&) {}
    // In points of the screen; none while it is nowhere.
    virtual std::optional<Rect> buttonFrame() const = 0;
    // False where the panel takes the press and tells of it afterwards.
    virtual bool knowsItsPresses() const { return true; }
};

}  // namespace norvane
