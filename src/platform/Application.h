#pragma once

#include <functional>

#include "platform/ActivationPolicy.h"
#include "platform/Cancellation.h"

namespace norvane {

// The process as the desktop sees it. Main thread only.
class Application {
 public:
    virtual ~Application() = default;

    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    // `activateIgnoringOtherApps:` with true: the user is now working with this application.
    virtual void activateIgnoringOtherApps() = 0;
    // `applicationDidBecomeActive:`: told in a later turn of the main queue, after each activation.
    [[nodiscard]] virtual Cancellation onDidBecomeActive(std::function<void()> observer) = 0;
    // Told when the user has started the application once more: there is still only this one.
    [[nodiscard]] virtual Cancellation onReopen(std::function<void()> observer) = 0;
    // `terminate:`: the process ends soon, with success, after the running task has returned.
    virtual void terminate() = 0;
};

}  // namespace norvane
