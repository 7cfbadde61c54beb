#include "shell/Popover.h"

#include <utility>

namespace norvane {
Popover::~Popover() {
    if (!isShown_) return;
    window_->orderOut();
    content_.disappear();
}

void Popover::showBelow(const Rect& anchor) {
    const bool isOtherPlace = std::exchange(anchor_, anchor) != anchor;
    if (isShown_) {
        if (isOtherPlace) window_->place(anchor);
        if (isUp_) window_->orderFront();
        return;
    }
    if (delegate_ != nullptr) delegate_->popoverWillShow(*this);
    if (!window_) window_ = windowServer_.makePopoverWindow(content_, *this);
    isShown_ = true;
    showing_ = std::make_shared<const int>();
    content_.appear();
    window_->place(anchor);
    bringUpAfterThisTurn();
}

void Popover::bringUpAfterThisTurn() {
    // The first task waits for what was enqueued with this showing, the second for what that turn enqueues
    // next to it: whoever enqueues a move right after showing has moved the window before it is seen.
    mainQueue_.async([this, showing = std::weak_ptr(showing_)] {
        if (showing.expired()) return;
        mainQueue_.async([this, showing] {
            if (showing.expired()) return;
            isUp_ = true;
            window_->orderFront();
        });
    });
}

void Popover::performClose() {
    if (!isShown_) return;
    if (delegate_ != nullptr && !delegate_->popoverShouldClose(*this)) return;
    isShown_ = isUp_ = false;
    showing_.reset();
    window_->orderOut();
    content_.disappear();
    if (delegate_ != nullptr) delegate_->popoverDidClose(*this);
}

void Popover::windowPressedOutside() {
    if (behavior_ != PopoverBehavior::applicationDefined) performClose();
}

void Popover::windowLostFocus() {
    if (behavior_ == PopoverBehavior::transient) performClose();
}

}  // namespace norvane
