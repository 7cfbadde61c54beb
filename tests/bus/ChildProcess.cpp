#include "ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>

namespace norvane {

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Environment& environment) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& part : command)
        arguments.push_back(const_cast<char*>(part.c_str()));
    arguments.push_back(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    process_ = fork();
    if (process_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(ends[1], 1);
        for (const auto& [name, value] : environment)
            setenv(name.c_str(), value.c_str(), 1);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(ends[1]);
    output_ = ends[0];
}

ChildProcess::~ChildProcess() {
    end(SIGKILL);
    if (output_ >= 0) close(output_);
}

std::optional<std::string> ChildProcess::firstLine() {
    constexpr int kPatienceMilliseconds = 30'000;
    std::string line;
    pollfd ready{output_, POLLIN, 0};
    char byte = 0;
    while (poll(&ready, 1, kPatienceMilliseconds) == 1 && read(output_, &byte, 1) == 1) {
        if (byte == '\n') return line;
        line += byte;
    }
    return std::nullopt;
}

void ChildProcess::terminate() {
    end(SIGTERM);
}

void ChildProcess::end(int signal) {
    if (process_ <= 0) return;
    ::kill(process_, signal);
    waitpid(process_, nullptr, 0);
    process_ = -1;
}

}  // namespace norvane
