#include "shell/WelcomePopoverController.h"

#include <utility>

#include "shell/WelcomeView.h"

namespace norvane {

WelcomePopoverController::WelcomePopoverController(const Platform& platform, std::function<void()> onContinue,
                                                   std::function<void()> onDismiss)
    : onDismiss_(std::move(onDismiss)),
      hosted_(
          [view = WelcomeView{.onContinue = std::move(onContinue)}] {
              return view.body().frame({.width = kContentSize.width, .height = kContentSize.height});
          },
          platform),
      popover_(platform.windowServer, platform.dispatch.mainQueue(), hosted_) {
    popover_.setBehavior(PopoverBehavior::transient);
    popover_.setDelegate(this);
}

WelcomePopoverController::~WelcomePopoverController() {
    popover_.performClose();
}

}  // namespace norvane
