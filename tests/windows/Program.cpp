#include "Program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>

namespace norvane {

Program::Program(const std::string& display, bool hasSeenWelcome, const std::string& sessionBus) {
    if (hasSeenWelcome) folder_.write("/norvane/defaults.ini", "[defaults]\nhasSeenWelcome=true\n");
    const std::string errors = folder_.path() + "/errors";
    process_ = fork();
    if (process_ != 0) return;
    const int output = open(errors.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    dup2(output, 1);
    dup2(output, 2);
    display.empty() ? unsetenv("DISPLAY") : setenv("DISPLAY", display.c_str(), 1);
    setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1);
    sessionBus.empty() ? unsetenv("DBUS_SESSION_BUS_ADDRESS")
                       : setenv("DBUS_SESSION_BUS_ADDRESS", sessionBus.c_str(), 1);
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "", 1);  // none, rather than the machine's
    unsetenv("XDG_RUNTIME_DIR");
    execl(NORVANE_BINARY_DIR "/norvane", "norvane", nullptr);
    _exit(127);
}

Program::~Program() {
    if (process_ <= 0 || status_) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

std::optional<int> Program::exitStatus() {
    int status = 0;
    if (!status_ && process_ > 0 && waitpid(process_, &status, WNOHANG) == process_) {
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    return status_;
}

}  // namespace norvane
