#pragma once

#include <sys/types.h>
#include <csignal>
#include <optional>
#include <string>

#include "linux/TemporaryFolder.h"

namespace norvane {

// The real program, running on a display with preferences of its own and no other bus than it is given. It
// ends, at the latest, when this goes away.
class Program {
 public:
    // An empty display is none at all. Its user has been welcomed before, or starts it for the first time.
    explicit Program(const std::string& display, bool hasSeenWelcome = true,
                     const std::string& sessionBus = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Asks it to end.
    void terminate() const { kill(process_, SIGTERM); }
    // The exit status, once it has ended; -1 where a signal ended it.
    std::optional<int> exitStatus();
    // What it has printed so far.
    std::string errors() const { return folder_.text("/errors"); }

 private:
    TemporaryFolder folder_;
    pid_t process_ = -1;
    std::optional<int> status_;
};

}  // namespace norvane
