#include "Program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/linux/LinuxUserDefaults.h"

namespace norvane {
namespace {

std::string textOf(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Program::Program(const std::string& display, bool hasSeenWelcome, const std::string& sessionBus) {
    std::string pattern = std::filesystem::temp_directory_path() / "norvane-program-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) return;
    folder_ = pattern;
    const std::filesystem::path preferences = LinuxUserDefaults::pathIn(pattern.c_str(), nullptr);
    std::filesystem::create_directories(preferences.parent_path());
    defaults_ = preferences;
    if (hasSeenWelcome) std::ofstream(preferences) << "[defaults]\nhasSeenWelcome=true\n";
    const std::string errors = folder_ + "/errors";
    process_ = fork();
    if (process_ != 0) return;
    const int output = open(errors.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    dup2(output, 1);
    dup2(output, 2);
    if (display.empty()) {
        unsetenv("DISPLAY");
    } else {
        setenv("DISPLAY", display.c_str(), 1);
    }
    setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
    if (sessionBus.empty()) {
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
    } else {
        setenv("DBUS_SESSION_BUS_ADDRESS", sessionBus.c_str(), 1);
    }
    unsetenv("XDG_RUNTIME_DIR");
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "", 1);  // none, rather than the machine's
    execl(NORVANE_BINARY_DIR "/norvane", "norvane", nullptr);
    _exit(127);
}

Program::~Program() {
    if (process_ > 0 && !status_) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    std::error_code ignored;
    if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
}

void Program::terminate() const {
    if (process_ > 0) kill(process_, SIGTERM);
}

std::optional<int> Program::exitStatus() {
    int status = 0;
    if (!status_ && process_ > 0 && waitpid(process_, &status, WNOHANG) == process_) {
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    return status_;
}

std::string Program::errors() const {
    return textOf(folder_ + "/errors");
}

std::string Program::defaults() const {
    return textOf(defaults_);
}

}  // namespace norvane
