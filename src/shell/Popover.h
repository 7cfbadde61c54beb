#pragma once

#include <memory>

#include "drawing/Rect.h"
#include "platform/MainQueue.h"
#include "platform/PopoverWindow.h"
#include "platform/PopoverWindowObserver.h"
#include "platform/SurfaceContent.h"
#include "platform/WindowServer.h"
#include "shell/PopoverBehavior.h"
#include "shell/PopoverDelegate.h"

namespace norvane {

// A content that hangs below an anchor until something closes it. Every way of closing asks the delegate
// first. Main thread only.
class Popover final : private PopoverWindowObserver {
 public:
    // All outlive the popover.
    Popover(WindowServer& windowServer, MainQueue& mainQueue, SurfaceContent& content)
        : windowServer_(windowServer), mainQueue_(mainQueue), content_(content) {}
    ~Popover() override;
    Popover(const Popover&) = delete;
    Popover& operator=(const Popover&) = delete;

    void setDelegate(PopoverDelegate* delegate) { delegate_ = delegate; }
    void setBehavior(PopoverBehavior behavior) { behavior_ = behavior; }
    PopoverBehavior behavior() const { return behavior_; }

    // `showRelativeToRect:ofView:preferredEdge:` below an anchor given on the screen. It counts as shown at
    // once; its window comes up after the next turn of the main queue, so that whoever moves it in that turn
    // makes nothing jump. Where it is shown already it comes to the front, and moves where the anchor is
    // another one.
    void showBelow(const Rect& anchor);
    // Closes it if it is shown and the delegate allows.
    void performClose();
    bool isShown() const { return isShown_; }

    // While it is shown; null otherwise.
    PopoverWindow* window() const { return isShown_ ? window_.get() : nullptr; }

 private:
    void windowPressedOutside() override;
    void windowLostFocus() override;
    void windowEscapePressed() override { performClose(); }

    void bringUpAfterThisTurn();

    WindowServer& windowServer_;
    MainQueue& mainQueue_;
    SurfaceContent& content_;
    PopoverDelegate* delegate_ = nullptr;
    PopoverBehavior behavior_ = PopoverBehavior::applicationDefined;
    std::unique_ptr<PopoverWindow> window_;
    Rect anchor_;  // of the last showing
    bool isShown_ = false;
    bool isUp_ = false;  // its window has been brought up
    // One for each showing: a window that is to come up later does so only if that showing still lasts.
    std::shared_ptr<const int> showing_;
};

}  // namespace norvane
