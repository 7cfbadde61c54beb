#pragma once

#include <functional>

#include "platform/Platform.h"
#include "shell/Popover.h"
#include "shell/PopoverDelegate.h"
#include "views/HostedView.h"

namespace norvane {

// The welcome, in a popover of its own. It must not be ended by its own callbacks: they come out of the very
// popover that it owns. Main thread only.
class WelcomePopoverController final : private PopoverDelegate {
 public:
    // The platform outlives the controller. `onContinue` is the button's action; `onDismiss` is called when
    // the popover has closed, whatever closed it.
    WelcomePopoverController(const Platform& platform, std::function<void()> onContinue,
                             std::function<void()> onDismiss);
    ~WelcomePopoverController() override;
    WelcomePopoverController(const WelcomePopoverController&) = delete;
    WelcomePopoverController& operator=(const WelcomePopoverController&) = delete;

    Popover& popover() { return popover_; }

    // The popover's extent in points, whatever the view measures.
    static constexpr Size kContentSize{340, 360};

 private:
    void popoverWillShow(Popover&) override {}
    bool popoverShouldClose(Popover&) override { return true; }
    void popoverDidClose(Popover&) override { onDismiss_(); }

    std::function<void()> onDismiss_;
    HostedView hosted_;
    Popover popover_;
};

}  // namespace norvane
