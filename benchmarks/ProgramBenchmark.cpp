#include "ProgramBenchmark.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "ChildProcess.h"
#include "ProcessFigures.h"
#include "ShownProgram.h"
#include "views/Animation.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr double kMostMillisecondsToStrip = 60;
constexpr double kMostMillisecondsAtFirst = 80;
constexpr double kMostMillisecondsLater = 30;
constexpr double kMostSwitchesASecond = 2.2;
constexpr double kMostTimesTheLoop = 2.4;
constexpr double kMostHiddenMiB = 3;
constexpr double kMostResidentMiB = 24;
constexpr double kMostLeftMiB = 2;

// Processor time, in milliseconds a second: ten are a hundredth of a processor.
struct Panel {
    const char* name;
    std::optional<double> bound;
};
constexpr Panel kPanels[] = {
    {"cpu", 25}, {"memory", 15}, {"storage", std::nullopt}, {"battery", std::nullopt}};
constexpr double kMostForManyProcessors = 60;

constexpr int kStarts = 15;
constexpr int kLives = 3;
constexpr int kLaterClicks = 4;
constexpr auto kSettling = 3s;
// A label that has been there for a while has most of its texts set: that is how it spends the day.
constexpr auto kFirstTexts = 30s;
constexpr auto kClosed = 30s;

// Until what fades in is half there.
double entranceMilliseconds() {
    const Animation entrance = Animation::easeOut(0.18);
    std::chrono::nanoseconds time{0};
    while (entrance.restAfter(time).way > 0.5)
        time += 100us;
    return std::chrono::duration<double, std::milli>(time).count();
}

// Thermal zones are looked at by a thread that nothing else wakes: one more switch now and then.
bool hasThermalZones() {
    std::error_code error;
    for (std::filesystem::directory_iterator zones("/sys/class/thermal", error), end; !error && zones != end;
         zones.increment(error)) {
        if (zones->path().filename().string().starts_with("thermal_zone")) return true;
    }
    return false;
}

}  // namespace

ProgramBenchmark::ProgramBenchmark(MeasuredPrograms programs, std::string settingsFolder, pid_t server,
                                   DisplayWatcher& watcher, FigureTable& table)
    : programs_(std::move(programs)),
      settingsFolder_(std::move(settingsFolder)),
      server_(server),
      watcher_(watcher),
      table_(table) {
    remember("memory");
}

// As the settings of somebody who has been welcomed and looked at that panel last.
void ProgramBenchmark::remember(const std::string& panel) {
    std::filesystem::create_directories(settingsFolder_ + "/norvane");
    std::ofstream(settingsFolder_ + "/norvane/defaults.ini")
        << "[defaults]\nhasSeenWelcome=true\nisSmartAutoExpandEnabled=false\nlastViewedPod=\"" << panel
        << "\"\n";
}

std::vector<double> ProgramBenchmark::starts(const std::string& program, const Surroundings& in) {
    std::vector<double> samples;
    // Once for the font cache, and for what the kernel keeps of the files.
    for (int i = -1; i < kStarts; ++i) {
        const ShownProgram shown(program, in, watcher_);
        if (!shown.isThere()) return {};
        if (i >= 0) samples.push_back(shown.millisecondsToStrip());
    }
    return samples;
}

void ProgramBenchmark::measureStarts(const Surroundings& in) {
    table_.add({.what = "start to painted strip, " + in.name,
                .samples = starts(programs_.norvane, in),
                .unit = "ms",
                .beside = FigureTable::Beside{"bare window", starts(programs_.bareWindows, in)},
                .bound = kMostMillisecondsToStrip});
}

ProgramBenchmark::Clicks ProgramBenchmark::clicks(const std::string& program, const Surroundings& in) {
    Clicks all;
    for (int life = 0; life < kLives; ++life) {
        ShownProgram shown(program, in, watcher_);
        if (!shown.isThere()) return {};
        std::this_thread::sleep_for(kSettling);
        for (int click = 0; click <= kLaterClicks; ++click) {
            const auto taken = shown.open();
            if (!taken || !shown.close()) return {};
            (click == 0 ? all.first : all.later).push_back(*taken);
        }
    }
    return all;
}

void ProgramBenchmark::measureClicks(const Surroundings& in) {
    Clicks own = clicks(programs_.norvane, in);
    const Clicks bare = clicks(programs_.bareWindows, in);
    // Later openings have no entrance.
    for (double& taken : own.first)
        taken -= entranceMilliseconds();
    table_.add({.what = "first click to half opacity, without the entrance",
                .samples = own.first,
                .unit = "ms",
                .beside = FigureTable::Beside{"bare window", bare.first},
                .bound = kMostMillisecondsAtFirst});
    table_.add({.what = "later click to half opacity",
                .samples = own.later,
                .unit = "ms",
                .beside = FigureTable::Beside{"bare window", bare.later},
                .bound = kMostMillisecondsLater});
}

std::optional<LoadWatch::Loads> ProgramBenchmark::minuteOf(pid_t program, const Surroundings& in) {
    const ChildProcess loop({programs_.bareReader}, in.environment);
    std::this_thread::sleep_for(kSettling);
    return LoadWatch(program, server_, loop.id()).watch();
}

void ProgramBenchmark::addMemory(pid_t program, const std::string& when, std::optional<double> residentBound,
                                 std::optional<double> dirtyBound) {
    const auto memory = memoryOf(program);
    if (!memory) return table_.fail(when + ": the kernel tells nothing of the program");
    table_.add({.what = when + ", resident",
                .samples = {memory->residentMiB},
                .unit = "MiB",
                .bound = residentBound});
    table_.add({.what = when + ", private dirty",
                .samples = {memory->privateDirtyMiB},
                .unit = "MiB",
                .bound = dirtyBound});
}

void ProgramBenchmark::measureLife(const Surroundings& in) {
    ShownProgram shown(programs_.norvane, in, watcher_);
    const std::string hidden = "hidden, " + in.name;
    if (!shown.isThere()) return table_.fail(hidden + ": no strip was painted");
    std::this_thread::sleep_for(kFirstTexts);
    const auto loads = minuteOf(shown.id(), in);
    if (!loads) return table_.fail(hidden + ": the kernel tells nothing of the program");
    const FigureTable::Beside loop{"bare loop", loads->bareLoop};
    table_.add({.what = hidden + ", program and X server",
                .samples = loads->both,
                .unit = "ms/s",
                .beside = loop,
                .ratioBound = kMostTimesTheLoop});
    table_.add(
        {.what = hidden + ", the program alone", .samples = loads->program, .unit = "ms/s", .beside = loop});
    table_.add({.what = hidden + ", wake-ups",
                .samples = loads->switches,
                .unit = "/s",
                .bound = hasThermalZones() ? std::nullopt : std::optional(kMostSwitchesASecond)});
    const auto before = memoryOf(shown.id());
    addMemory(shown.id(), hidden, std::nullopt, kMostHiddenMiB);

    if (!shown.open()) return table_.fail("open, " + in.name + ": nothing was shown");
    std::this_thread::sleep_for(kSettling);
    addMemory(shown.id(), "open, " + in.name, kMostResidentMiB, std::nullopt);
    if (!shown.close()) return table_.fail("open, " + in.name + ": a second click left it open");
    std::this_thread::sleep_for(kClosed);
    const auto after = memoryOf(shown.id());
    if (!before || !after)
        return table_.fail("closed, " + in.name + ": the kernel tells nothing of the program");
    table_.add({.what = "closed half a minute, " + in.name + ", private dirty more than before",
                .samples = {after->privateDirtyMiB - before->privateDirtyMiB},
                .unit = "MiB",
                .bound = kMostLeftMiB});
    if (shown.hasEnded()) table_.fail("life, " + in.name + ": the program ended by itself");
}

void ProgramBenchmark::measureOpen(const std::string& program, const Surroundings& in,
                                   const std::string& panel, std::optional<double> bound) {
    const std::string open = panel + " panel open";
    ShownProgram shown(program, in, watcher_);
    if (!shown.isThere()) return table_.fail(open + ": no strip was painted");
    std::this_thread::sleep_for(kSettling);
    // The first opening shows the processor, the next one what is remembered.
    if (!shown.open() || !shown.close() || !shown.open()) return table_.fail(open + ": nothing was shown");
    const auto loads = minuteOf(shown.id(), in);
    if (!loads) return table_.fail(open + ": the kernel tells nothing of the program");
    const FigureTable::Beside loop{"bare loop", loads->bareLoop};
    table_.add({.what = open + ", program and X server",
                .samples = loads->both,
                .unit = "ms/s",
                .beside = loop,
                .bound = bound});
    table_.add(
        {.what = open + ", the program alone", .samples = loads->program, .unit = "ms/s", .beside = loop});
    table_.add({.what = open + ", wake-ups", .samples = loads->switches, .unit = "/s"});
}

void ProgramBenchmark::measurePanels(const Surroundings& in) {
    for (const Panel& panel : kPanels) {
        remember(panel.name);
        measureOpen(programs_.norvane, in, panel.name, panel.bound);
    }
    remember("cpu");
    measureOpen(programs_.manyProcessors, in, "cpu (64 processors)", kMostForManyProcessors);
}

}  // namespace norvane
