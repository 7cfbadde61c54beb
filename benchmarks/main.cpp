// Measures the program's parts inside this process, then the whole program from outside, and prints all of it
// as one table. Fails if a bound is broken or something could not be measured.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "ChildProcess.h"
#include "DisplayWatcher.h"
#include "Environment.h"
#include "FigureTable.h"
#include "FrameBenchmarks.h"
#include "MachineBenchmarks.h"
#include "PanelBenchmarks.h"
#include "ProgramBenchmark.h"
#include "SampleReporter.h"
#include "ScratchFolder.h"
#include "TickBenchmarks.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// By itself the allocator decides from size to size, and from run to run, what it gives back to the kernel in
// between; getting it anew costs as much as the work that is measured.
void keepMemory() {
    constexpr int kBytes = 64 << 20;
    ::mallopt(M_MMAP_THRESHOLD, kBytes);
    ::mallopt(M_TRIM_THRESHOLD, kBytes);
}

bool measureParts(int argumentCount, char** arguments, FigureTable& table) {
    keepMemory();
    // All benchmarks take turns in random order, so that a machine that becomes slower for a while becomes it
    // for all of them. What the user says comes later and wins.
    std::string shuffled = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> all(arguments, arguments + argumentCount);
    all.insert(all.begin() + 1, shuffled.data());
    int count = static_cast<int>(all.size());
    all.push_back(nullptr);
    benchmark::Initialize(&count, all.data());
    if (benchmark::ReportUnrecognizedArguments(count, all.data())) return false;
    std::fprintf(stderr, "Measuring parts, for some minutes.\n");
    registerTickBenchmarks();
    registerMachineBenchmarks();
    registerFrameBenchmarks();
    registerPanelBenchmarks();
    SampleReporter samples;
    benchmark::RunSpecifiedBenchmarks(&samples);
    benchmark::Shutdown();
    addTickFigures(samples, table);
    addMachineFigures(samples, table);
    addFrameFigures(samples, table);
    addPanelFigures(samples, table);
    return true;
}

void measureProgram(const std::filesystem::path& folder, FigureTable& table) {
    const ScratchFolder scratch;
    if (scratch.path().empty()) return table.fail("There is no room for temporary files.");
    // Nothing of the desktop that this runs on, so that the figures are comparable.
    const Environment plain = Environment::inherited()
                                  .with("XDG_CONFIG_HOME", scratch.path())
                                  .with("XDG_RUNTIME_DIR", scratch.path())
                                  .without("DBUS_SESSION_BUS_ADDRESS")
                                  .with("DBUS_SYSTEM_BUS_ADDRESS", "");

    ChildProcess server(
        {"Xvfb", "-displayfd", "1", "-screen", "0", "1600x1000x24", "-nolisten", "tcp", "-noreset"}, plain,
        ChildProcess::Output::read);
    const auto number = server.firstLine(30s);
    if (!number) return table.fail("Xvfb does not start.");
    const Environment alone = plain.with("DISPLAY", ':' + *number);
    const auto watcher = DisplayWatcher::open(':' + *number);
    if (!watcher) return table.fail("The display cannot be watched.");

    ChildProcess bus({"dbus-daemon", "--session", "--nofork", "--print-address"}, alone,
                     ChildProcess::Output::read);
    const auto address = bus.firstLine(30s);
    if (!address) return table.fail("dbus-daemon does not start.");

    const std::vector<Surroundings> all{
        {"no bus", alone},
        {"bus", alone.with("DBUS_SESSION_BUS_ADDRESS", *address).with("DBUS_SYSTEM_BUS_ADDRESS", *address)}};
    ProgramBenchmark program({.norvane = folder.parent_path() / "norvane",
                              .manyProcessors = folder / "norvane_server_program",
                              .bareWindows = folder / "norvane_bare_windows",
                              .bareReader = folder / "norvane_bare_reader"},
                             scratch.path(), server.id(), *watcher, table);
    for (const Surroundings& in : all) {
        program.measureStarts(in);
        program.measureLife(in);
    }
    program.measureClicks(all.front());
    program.measurePanels(all.front());
}

int run(int argumentCount, char** arguments) {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    FigureTable table;
    if (!measureParts(argumentCount, arguments, table)) return 2;
    measureProgram(folder, table);
    table.print();
    return table.isGood() ? 0 : 1;
}

}  // namespace
}  // namespace norvane

int main(int argumentCount, char** arguments) {
    return norvane::run(argumentCount, arguments);
}
