#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "DisplayWatcher.h"
#include "Surroundings.h"

namespace norvane {

// A program with a strip, started on the benchmark's display, pointed at and clicked as somebody would.
class ShownProgram {
 public:
    // Both outlive it. Waits until its strip is there, and puts the pointer on it.
    ShownProgram(const std::string& program, const Surroundings& in, DisplayWatcher& watcher);

    // Whether it got so far.
    bool isThere() const { return isThere_; }
    bool hasEnded() { return child_.hasEnded(); }
    pid_t id() const { return child_.id(); }
    // From before it was forked to the first look at which its strip had been painted.
    double millisecondsToStrip() const { return millisecondsToStrip_; }

    // Clicks the strip. The milliseconds from the press until the popover stood out half as much as it did in
    // the end; none where nothing came.
    std::optional<double> open();
    // Clicks once more; whether the popover went.
    bool close();

 private:
    const Surroundings& in_;
    DisplayWatcher& watcher_;
    ChildProcess child_;
    bool isThere_ = false;
    double millisecondsToStrip_ = 0;
    xcb_window_t popover_ = XCB_NONE;
};

}  // namespace norvane
