#pragma once

#include <sys/types.h>
#include <cstdio>
#include <string>

namespace norvane {

// Runs a command of the shell to its end, with that DISPLAY, and tells its exit status.
int runOn(const std::string& display, const std::string& command);

// An X server of one's own, without a screen that anybody sees: on a free display, ready when constructed,
// gone when destroyed.
class Xvfb {
 public:
    Xvfb();
    ~Xvfb() { end(); }
    Xvfb(const Xvfb&) = delete;
    Xvfb& operator=(const Xvfb&) = delete;

    bool isRunning() const { return !display_.empty(); }
    // ":5"
    const std::string& display() const { return display_; }
    // Without a warning to anybody on it.
    void end();

    static constexpr int kWidth = 1000;
    static constexpr int kHeight = 700;

 private:
    std::FILE* said_ = nullptr;
    pid_t process_ = -1;
    std::string display_;
};

}  // namespace norvane
