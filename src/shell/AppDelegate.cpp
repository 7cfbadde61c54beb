#include "shell/AppDelegate.h"

namespace norvane {

void AppDelegate::applicationDidFinishLaunching() {
    statusBarController_ = StatusBarController::create(platform_, preferences_);
    platform_.dispatch.mainQueue().async(
        [&application = platform_.application] { application.activateIgnoringOtherApps(); });
}

}  // namespace norvane
