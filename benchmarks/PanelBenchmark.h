#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "ChildProcess.h"
#include "DisplayWatcher.h"
#include "Surroundings.h"
#include "Verdict.h"

namespace norvane {

// What the dashboard costs while it is open, how soon it is there after a click, and what is left of it once
// it is closed: of the whole program, with the server's part of the work. A first opening shows the
// processor, a second one the memory.
class PanelBenchmark {
 public:
    // All outlive it. `server` is the display's own process. The folder for settings is the surroundings'
    // own.
    PanelBenchmark(const Surroundings& surroundings, const std::string& settingsFolder, pid_t server,
                   DisplayWatcher& watcher, Verdict& verdict);

    // This machine's processors, the memory, and all the rest.
    void measure(const std::string& program);
    // The processors' panel alone, of a program that shows many of them.
    void measureManyProcessors(const std::string& program);

 private:
    // Clicks the strip; the milliseconds until it is half there. None after a failure was told.
    std::optional<double> open(ChildProcess& child, const std::string& what);
    bool close();
    std::optional<DisplayWatcher::Shown> strip(ChildProcess& child);
    // Percent of one processor, over a while.
    std::optional<double> load(ChildProcess& child);
    void judgeLoad(ChildProcess& child, const std::string& what, double bound);

    const Surroundings& in_;
    pid_t server_;
    DisplayWatcher& watcher_;
    Verdict& verdict_;
    xcb_window_t popover_ = XCB_NONE;
};

}  // namespace norvane
