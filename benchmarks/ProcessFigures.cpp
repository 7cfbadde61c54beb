#include "ProcessFigures.h"

#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace norvane {
namespace {

std::filesystem::path folderOf(pid_t process) {
    return std::filesystem::path("/proc") / std::to_string(process);
}

// The number behind "Name:" at the beginning of a line.
std::optional<std::uint64_t> numberBehind(const std::string& name, const std::filesystem::path& file) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + ':')) return std::stoull(line.substr(name.size() + 1));
    }
    return std::nullopt;
}

}  // namespace

std::optional<MemoryFigure> memoryOf(pid_t process) {
    constexpr double kKiBInMiB = 1024;
    const auto file = folderOf(process) / "smaps_rollup";
    const auto resident = numberBehind("Rss", file);
    const auto dirty = numberBehind("Private_Dirty", file);
    if (!resident || !dirty) return std::nullopt;
    return MemoryFigure{static_cast<double>(*resident) / kKiBInMiB, static_cast<double>(*dirty) / kKiBInMiB};
}

std::optional<std::chrono::nanoseconds> cpuTimeOf(pid_t process) {
    clockid_t clock{};
    timespec time{};
    if (::clock_getcpuclockid(process, &clock) != 0 || ::clock_gettime(clock, &time) != 0)
        return std::nullopt;
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::map<pid_t, std::uint64_t> voluntarySwitchesOf(pid_t process) {
    std::map<pid_t, std::uint64_t> switches;
    std::error_code error;
    for (std::filesystem::directory_iterator threads(folderOf(process) / "task", error), end;
         !error && threads != end; threads.increment(error)) {
        const auto count = numberBehind("voluntary_ctxt_switches", threads->path() / "status");
        if (count) switches[static_cast<pid_t>(std::stol(threads->path().filename().string()))] = *count;
    }
    return switches;
}

}  // namespace norvane
