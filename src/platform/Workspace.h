#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Cancellation.h"

namespace norvane {

// The desktop's services for things that are not ours, `NSWorkspace`. Main thread only.
class Workspace {
 public:
    virtual ~Workspace() = default;

    // Hands the URL to whatever the user has chosen for such ones: a browser, a mail program. Returns at
    // once; where nobody takes it, nothing happens.
    virtual void openURL(const std::string& url) = 0;

    // Unmounts the volume at that mount point and ejects its device, or powers it off, as far as it can be.
    // Takes as long as the device, or a user who is asked for a password, takes. Told on the main thread,
    // never from within the call: nothing where it went well, else what went wrong. A second call for a
    // volume under way joins the first.
    virtual void unmountAndEjectDevice(const std::string& path,
                                       std::function<void(std::optional<std::string> error)> completion) = 0;

    // Told on the main thread whenever a volume has been mounted or unmounted, for as long as the
    // cancellation lives. Nothing is watched while nobody listens.
    [[nodiscard]] virtual Cancellation onDidMount(std::function<void()> observer) = 0;
    [[nodiscard]] virtual Cancellation onDidUnmount(std::function<void()> observer) = 0;
};

}  // namespace norvane
