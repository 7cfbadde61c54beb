#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "Environment.h"
#include "platform/linux/FileDescriptor.h"

namespace norvane {

// A program that this one started. It is asked to end, and seen off, when this goes away; should this process
// die first, the kernel asks it.
class ChildProcess {
 public:
    enum class Output { shown, read };

    // The program is looked up as a shell does. Where it cannot be run, the child ends at once.
    ChildProcess(const std::vector<std::string>& command, const Environment& environment,
                 Output output = Output::shown);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t id() const { return id_; }
    // Just before it was forked.
    std::chrono::steady_clock::time_point startedAt() const { return startedAt_; }
    bool hasEnded();
    // Waits for the end. Its exit status; none where a signal ended it or it goes on for too long.
    std::optional<int> exitStatus(std::chrono::milliseconds patience);

    // The first line of its output, which has to be read; none where it ends without one or takes too long.
    std::optional<std::string> firstLine(std::chrono::milliseconds patience);

 private:
    bool waitForEnd(std::chrono::milliseconds patience);

    std::chrono::steady_clock::time_point startedAt_;
    pid_t id_ = -1;
    bool hasEnded_ = false;
    int status_ = 0;
    FileDescriptor output_;
};

}  // namespace norvane
