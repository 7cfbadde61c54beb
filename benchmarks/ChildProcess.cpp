#include "ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <thread>

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kCannotRun = 127;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Environment& environment,
                           Output output) {
    // Between fork and exec only what needs no memory.
    std::vector<std::string> words = command;
    std::vector<std::string> entries = environment.entries();
    const std::vector<char*> arguments = pointersTo(words);
    const std::vector<char*> variables = pointersTo(entries);
    std::array<int, 2> pipe{-1, -1};
    if (output == Output::read && ::pipe2(pipe.data(), O_CLOEXEC) != 0) {
        hasEnded_ = true;
        return;
    }
    output_ = FileDescriptor(pipe[0]);
    const FileDescriptor inner(pipe[1]);

    startedAt_ = Clock::now();
    id_ = ::fork();
    if (id_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (inner) {
            ::dup2(inner.get(), STDOUT_FILENO);
            const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
            ::dup2(nowhere, STDERR_FILENO);
        }
        ::execvpe(arguments.front(), arguments.data(), variables.data());
        ::_exit(kCannotRun);
    }
    hasEnded_ = id_ < 0;
}

ChildProcess::~ChildProcess() {
    if (hasEnded()) return;
    ::kill(id_, SIGTERM);
    if (waitForEnd(5s)) return;
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
}

bool ChildProcess::hasEnded() {
    if (!hasEnded_) hasEnded_ = ::waitpid(id_, &status_, WNOHANG) == id_;
    return hasEnded_;
}

bool ChildProcess::waitForEnd(std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    while (!hasEnded() && Clock::now() < deadline)
        std::this_thread::sleep_for(2ms);
    return hasEnded_;
}

std::optional<int> ChildProcess::exitStatus(std::chrono::milliseconds patience) {
    if (!waitForEnd(patience) || !WIFEXITED(status_)) return std::nullopt;
    return WEXITSTATUS(status_);
}

std::optional<std::string> ChildProcess::firstLine(std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    std::string line;
    while (output_) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd waited{output_.get(), POLLIN, 0};
        if (::poll(&waited, 1, static_cast<int>(std::max(left, 0ms).count())) <= 0) return std::nullopt;
        char letter = 0;
        if (::read(output_.get(), &letter, 1) != 1) return std::nullopt;
        if (letter == '\n') return line;
        line += letter;
    }
    return std::nullopt;
}

}  // namespace norvane
