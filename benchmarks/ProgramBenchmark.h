#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "DisplayWatcher.h"
#include "FigureTable.h"
#include "LoadWatch.h"
#include "Surroundings.h"

namespace norvane {

// The programs that are started: our own, our own with 64 made processors, and those that do the least.
struct MeasuredPrograms {
    std::string norvane;
    std::string manyProcessors;
    std::string bareWindows;
    std::string bareReader;
};

// What the whole program costs on a display, seen from outside, with the X server's part of the work.
class ProgramBenchmark {
 public:
    // All but the programs outlive it. `server` is the display's own process. The folder for settings is that
    // of every surroundings.
    ProgramBenchmark(MeasuredPrograms programs, std::string settingsFolder, pid_t server,
                     DisplayWatcher& watcher, FigureTable& table);

    void measureStarts(const Surroundings& in);
    void measureClicks(const Surroundings& in);
    // Hidden for a minute, then opened and closed: load, wake-ups, memory.
    void measureLife(const Surroundings& in);
    // Each panel open for a minute.
    void measurePanels(const Surroundings& in);

 private:
    std::vector<double> starts(const std::string& program, const Surroundings& in);
    struct Clicks {
        std::vector<double> first;
        std::vector<double> later;
    };
    Clicks clicks(const std::string& program, const Surroundings& in);
    void measureOpen(const std::string& program, const Surroundings& in, const std::string& panel,
                     std::optional<double> bound);
    std::optional<LoadWatch::Loads> minuteOf(pid_t program, const Surroundings& in);
    void remember(const std::string& panel);
    void addMemory(pid_t program, const std::string& when, std::optional<double> residentBound,
                   std::optional<double> dirtyBound);

    MeasuredPrograms programs_;
    std::string settingsFolder_;
    pid_t server_;
    DisplayWatcher& watcher_;
    FigureTable& table_;
};

}  // namespace norvane
