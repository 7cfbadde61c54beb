#pragma once

#include <functional>
#include <optional>

#include "platform/linux/Desk.h"
#include "platform/linux/PixelRect.h"
#include "platform/linux/PopoverShape.h"

namespace norvane {

// A popover's window as the server has it: of one kind for life, described to window managers, where it was
// asked to be and where one of them has put it, cut to its panel. In pixels of the screen. Main thread only.
class PopoverServerWindow {
 public:
    struct Corner {
        int x = 0;
        int y = 0;
    };

    explicit PopoverServerWindow(const Desk& desk) : desk_(desk) {}
    ~PopoverServerWindow() { destroy(); }
    PopoverServerWindow(const PopoverServerWindow&) = delete;
    PopoverServerWindow& operator=(const PopoverServerWindow&) = delete;

    // Makes the window, which is not on the screen yet.
    void create(const PixelRect& frame, std::function<void(const xcb_generic_event_t&)> onEvent);
    void destroy();

    // XCB_NONE while there is none.
    xcb_window_t id() const { return id_; }
    bool exists() const { return id_ != XCB_NONE; }
    // Of the window; without one, of the window that would be made now.
    bool isTranslucent() const { return exists() ? isTranslucent_ : canBeTranslucent(); }
    const X11Connection::Visual& visual() const;
    // Whether the screen has become one for windows of the other kind.
    bool isOfAnotherKind() const { return exists() && isTranslucent_ != canBeTranslucent(); }

    void raise();
    // Asks for that place and size. What is on the screen stays where it is: at the left, and below where the
    // popover hangs up from its anchor, else above.
    void setFrame(const PixelRect& frame, bool hangsUp);
    // Has the server know what the window consists of.
    void cut(const PopoverShape& shape);

    // Where a window manager has put the window, once it told so.
    const std::optional<Corner>& placed() const { return placed_; }
    // Asks the server where the window is; takes from an event of the pointer where it is, which window
    // managers do not always tell. True where that may be another place than was asked for.
    bool followPlace();
    template <typename Event>
    bool followPointer(const Event& event) {
        return putAt(event.root_x - event.event_x, event.root_y - event.event_y);
    }

 private:
    bool canBeTranslucent() const;
    void describe();
    void sayWhereItIsWanted();
    bool putAt(int x, int y);

    const Desk& desk_;
    xcb_window_t id_ = XCB_NONE;
    bool isTranslucent_ = false;
    PixelRect asked_;
    std::optional<Corner> placed_;
    PopoverShape cut_;  // what the server was told last
    Cancellation events_;
};

}  // namespace norvane
