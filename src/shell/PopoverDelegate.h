#pragma once

namespace norvane {

class Popover;

// Who is asked and told about a popover's comings and goings.
class PopoverDelegate {
 public:
    virtual ~PopoverDelegate() = default;

    // Before it is shown.
    virtual void popoverWillShow(Popover& popover) = 0;
    // Whether it may close, by whatever way.
    virtual bool popoverShouldClose(Popover& popover) = 0;
    // It is no longer shown.
    virtual void popoverDidClose(Popover& popover) = 0;
};

}  // namespace norvane
