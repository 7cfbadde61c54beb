#pragma once

#include <memory>

#include "drawing/Size.h"
#include "platform/PopoverWindow.h"
#include "platform/PopoverWindowObserver.h"
#include "platform/StatusItem.h"
#include "platform/SurfaceContent.h"

namespace norvane {

// The desktop that the application shows itself on. Main thread only.
class WindowServer {
 public:
    virtual ~WindowServer() = default;

    // `statusItemWithLength:`. The item lives until the returned value goes away.
    virtual std::unique_ptr<StatusItem> statusItemWithLength(double points) = 0;
    // A window, not on the screen yet. Content and observer outlive it.
    virtual std::unique_ptr<PopoverWindow> makePopoverWindow(SurfaceContent& content,
                                                             PopoverWindowObserver& observer) = 0;
};

}  // namespace norvane
