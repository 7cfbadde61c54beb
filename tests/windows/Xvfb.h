#pragma once

#include <sys/types.h>
#include <string>
#include <vector>

namespace norvane {

// Runs a program to its end, with that DISPLAY. Its exit status; -1 where it
// could not be started.
int runOn(const std::string& display, const std::vector<std::string>& command);

// An X server of one's own, without a screen that anybody sees: on a free
// display, ready when constructed, gone when destroyed.
class Xvfb {
 public:
    static bool isInstalled();

    Xvfb();
    ~Xvfb();
    Xvfb(const Xvfb&) = delete;
    Xvfb& operator=(const Xvfb&) = delete;

    bool isRunning() const { return !display_.empty(); }
    // ":5"
    const std::string& display() const { return display_; }
    // Ends it without a warning to anybody.
    void kill();

    static constexpr int kWidth = 1000;
    static constexpr int kHeight = 700;

 private:
    pid_t process_ = -1;
    std::string display_;
};

}  // namespace norvane
