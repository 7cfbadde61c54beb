#pragma once

#include <sys/types.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace norvane {

// Another program, that ends when this goes away, or with the test.
class ChildProcess {
 public:
    // What the environment has more than the test's own.
    using Environment = std::map<std::string, std::string>;

    explicit ChildProcess(const std::vector<std::string>& command, const Environment& environment = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // The first line that it prints; none if it does not.
    std::optional<std::string> firstLine();
    // Asks it to end, and waits until it has: it may have others to end.
    void terminate();

 private:
    void end(int signal);

    pid_t process_ = -1;
    int output_ = -1;
};

}  // namespace norvane
