#include "shell/AppDelegate.h"

#include <utility>

namespace norvane {

void AppDelegate::applicationDidFinishLaunching() {
    activations_ = platform_.application.onDidBecomeActive([this] { applicationDidBecomeActive(); });
    statusBarController_ = StatusBarController::create(platform_, preferences_, hardware_);
    platform_.dispatch.mainQueue().async(
        [&application = platform_.application] { application.activateIgnoringOtherApps(); });
}

void AppDelegate::applicationDidBecomeActive() {
    if (std::exchange(didShowWelcome_, true)) return;
    if (statusBarController_) statusBarController_->showWelcomeIfNeeded();
}

}  // namespace norvane
