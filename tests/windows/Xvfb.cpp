#include "Xvfb.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>

namespace norvane {
namespace {

constexpr int kStartMilliseconds = 30'000;

// Starts the program; the child calls `prepare` before. What it prints goes
// nowhere.
template <typename Prepare>
pid_t start(const std::vector<std::string>& command, Prepare prepare) {
    std::vector<char*> arguments;
    for (const std::string& part : command)
        arguments.push_back(const_cast<char*>(part.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nowhere, 0);
    dup2(nowhere, 1);
    dup2(nowhere, 2);
    prepare();
    execvp(arguments[0], arguments.data());
    _exit(127);
}

}  // namespace

int runOn(const std::string& display, const std::vector<std::string>& command) {
    const pid_t child = start(command, [&] { setenv("DISPLAY", display.c_str(), 1); });
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status) == 127 ? -1 : WEXITSTATUS(status);
}

bool Xvfb::isInstalled() {
    return runOn("", {"sh", "-c", "command -v Xvfb"}) == 0;
}

Xvfb::Xvfb() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    // The server writes the display's number there once it takes connections.
    constexpr int kReport = 3;
    const std::string screen = std::to_string(kWidth) + "x" + std::to_string(kHeight) + "x24";
    process_ = start({"Xvfb", "-displayfd", std::to_string(kReport), "-screen", "0", screen, "-nolisten",
                      "tcp", "-noreset"},
                     [&] {
                         dup2(ends[1], kReport);
                         fcntl(kReport, F_SETFD, 0);
                     });
    close(ends[1]);
    std::string number;
    pollfd ready{ends[0], POLLIN, 0};
    char byte = 0;
    while (poll(&ready, 1, kStartMilliseconds) == 1 && read(ends[0], &byte, 1) == 1 && byte != '\n')
        number += byte;
    close(ends[0]);
    if (!number.empty()) display_ = ":" + number;
}

Xvfb::~Xvfb() {
    kill();
}

void Xvfb::kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    // A killed server leaves its lock and its socket.
    const std::string number = display_.empty() ? "" : display_.substr(1);
    if (!number.empty()) {
        unlink(("/tmp/.X" + number + "-lock").c_str());
        unlink(("/tmp/.X11-unix/X" + number).c_str());
    }
    process_ = -1;
    display_.clear();
}

}  // namespace norvane
