#pragma once

#include <string>

namespace norvane {

// The desktop's services for things that are not ours, `NSWorkspace`. Main thread only.
class Workspace {
 public:
    virtual ~Workspace() = default;

    // Hands the URL to whatever the user has chosen for such ones: a browser, a mail program. Returns at
    // once; where nobody takes it, nothing happens.
    virtual void openURL(const std::string& url) = 0;
};

}  // namespace norvane
