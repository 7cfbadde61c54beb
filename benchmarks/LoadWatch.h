#pragma once

#include <sys/types.h>

#include <optional>
#include <vector>

namespace norvane {

// What a program makes the machine do, over a minute in pieces, with a bare loop that runs beside it
// meanwhile.
class LoadWatch {
 public:
    // Each as many as the minute has pieces; processor time in milliseconds a second.
    struct Loads {
        std::vector<double> program;
        std::vector<double> server;
        std::vector<double> both;
        std::vector<double> bareLoop;
        // How often a second its threads went to sleep by themselves.
        std::vector<double> switches;
    };

    LoadWatch(pid_t program, pid_t server, pid_t bareLoop)
        : program_(program), server_(server), bareLoop_(bareLoop) {}

    // Takes a minute. None where one of them went away.
    std::optional<Loads> watch() const;

 private:
    pid_t program_;
    pid_t server_;
    pid_t bareLoop_;
};

}  // namespace norvane
