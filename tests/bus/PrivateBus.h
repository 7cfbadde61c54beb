#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ChildProcess.h"
#include "linux/TemporaryFolder.h"

namespace norvane {

// A message bus of a test's own, always at the same address, with the activatable services that the test
// gives it and no other.
class PrivateBus {
 public:
    PrivateBus();

    const std::string& address() const { return address_; }
    const std::string& folder() const { return folder_.path(); }

    // Ends the bus without a warning to anybody.
    void kill();
    // A new one in its place.
    void start();

    // From now on, who calls this name has the command run, unless they forbid it.
    void makeActivatable(const std::string& name, const std::string& command);

 private:
    TemporaryFolder folder_;
    std::string address_;
    std::unique_ptr<ChildProcess> daemon_;
};

}  // namespace norvane
