#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>

namespace norvane {

// What the kernel counts of another process (proc(5)).

struct MemoryFigure {
    double residentMiB = 0;
    double privateDirtyMiB = 0;
};
// From its smaps_rollup.
std::optional<MemoryFigure> memoryOf(pid_t process);

// The time that its threads have run, ended ones included.
std::optional<std::chrono::nanoseconds> cpuTimeOf(pid_t process);

// How often each of its threads, by number, has gone to sleep by itself: what wakes the machine.
std::map<pid_t, std::uint64_t> voluntarySwitchesOf(pid_t process);

}  // namespace norvane
