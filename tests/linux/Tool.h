#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <string>

namespace norvane {

// Runs one of the project's tools, told as a shell is, until it ends. Gives its exit status; -1 if it was
// ended by a signal.
inline int runTool(const std::string& command) {
    const int status = std::system((NORVANE_SOURCE_DIR "/tools/" + command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace norvane
