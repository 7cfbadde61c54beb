#pragma once

namespace norvane {

// The process as the desktop sees it. Main thread only.
class Application {
 public:
    virtual ~Application() = default;

    // `activateIgnoringOtherApps:` with true: the user is now working with this application.
    virtual void activateIgnoringOtherApps() = 0;
    // `terminate:`: the process ends soon, with success, after the running task has returned.
    virtual void terminate() = 0;
};

}  // namespace norvane
