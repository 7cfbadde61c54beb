#pragma once

namespace norvane {

// What a popover's window tells its owner. Main thread only.
class PopoverWindowObserver {
 public:
    virtual ~PopoverWindowObserver() = default;

    // A button was pressed outside of all windows of ours: not in this one, not in another popover, not on
    // the status item, which has an action of its own.
    virtual void windowPressedOutside() = 0;
    // The keyboard went to a window of somebody else.
    virtual void windowLostFocus() = 0;
    // Esc was pressed and the content had no use for it.
    virtual void windowEscapePressed() = 0;
};

}  // namespace norvane
