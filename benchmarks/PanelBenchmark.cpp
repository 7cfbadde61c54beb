#include "PanelBenchmark.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "ProcessFigures.h"
#include "views/Animation.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Clock = DisplayWatcher::Clock;

// Percent of one processor.
constexpr double kMostForProcessors = 2.5;
constexpr double kMostForMemory = 2;
constexpr double kMostForManyProcessors = 6;
constexpr double kMostMillisecondsAtFirst = 80;
constexpr double kMostMilliseconds = 30;
constexpr double kMostResidentMiB = 24;
constexpr double kMostLeftMiB = 2;

constexpr auto kPatience = 10s;
constexpr auto kSettling = 3s;
constexpr auto kWatched = 15s;
// Longer than the entrance.
constexpr auto kEntering = 600ms;

// Until what fades in is half there.
double entranceMilliseconds() {
    const Animation entrance = Animation::easeOut(0.18);
    std::chrono::nanoseconds time{0};
    while (entrance.restAfter(time).way > 0.5)
        time += 100us;
    return std::chrono::duration<double, std::milli>(time).count();
}

}  // namespace

PanelBenchmark::PanelBenchmark(const Surroundings& surroundings, const std::string& settingsFolder,
                               pid_t server, DisplayWatcher& watcher, Verdict& verdict)
    : in_(surroundings), server_(server), watcher_(watcher), verdict_(verdict) {
    std::filesystem::create_directories(settingsFolder + "/norvane");
    std::ofstream(settingsFolder + "/norvane/defaults.ini")
        << "[defaults]\nhasSeenWelcome=true\nisSmartAutoExpandEnabled=false\nlastViewedPod=\"memory\"\n";
}

void PanelBenchmark::measure(const std::string& program) {
    watcher_.skipPast();
    ChildProcess child({program}, in_.environment);
    if (!strip(child)) return verdict_.fail("panels: no strip was painted");
    std::this_thread::sleep_for(kSettling);
    const auto before = memoryOf(child.id());

    const auto first = open(child, "panels, first click");
    if (!first || !before) return verdict_.fail("panels: nothing is known of the program");
    // Later openings have no entrance.
    verdict_.judge("panels, first click to half opacity", *first - entranceMilliseconds(), "ms",
                   kMostMillisecondsAtFirst, " (without the entrance)");
    judgeLoad(child, "panels, processors open", kMostForProcessors);
    const auto opened = memoryOf(child.id());
    if (!opened) return verdict_.fail("panels: nothing is known of the program");
    verdict_.judge("panels, processors open, resident", opened->residentMiB, "MiB", kMostResidentMiB);
    if (!close()) return;

    const auto second = open(child, "panels, second click");
    if (!second) return;
    verdict_.judge("panels, later click to half opacity", *second, "ms", kMostMilliseconds);
    judgeLoad(child, "panels, memory open", kMostForMemory);
    if (!close()) return;
    std::this_thread::sleep_for(30s);
    const auto after = memoryOf(child.id());
    if (!after) return verdict_.fail("panels: nothing is known of the program");
    verdict_.judge("panels, closed 30 s, private dirty more",
                   after->privateDirtyMiB - before->privateDirtyMiB, "MiB", kMostLeftMiB);
}

void PanelBenchmark::measureManyProcessors(const std::string& program) {
    watcher_.skipPast();
    ChildProcess child({program}, in_.environment);
    if (!strip(child)) return verdict_.fail("many processors: no strip was painted");
    std::this_thread::sleep_for(kSettling);
    if (open(child, "many processors, first click"))
        judgeLoad(child, "panels, 64 processors open", kMostForManyProcessors);
}

std::optional<DisplayWatcher::Shown> PanelBenchmark::strip(ChildProcess& child) {
    const auto strip = watcher_.nextShown("norvane", kPatience, [&child] { return child.hasEnded(); });
    if (!strip) return std::nullopt;
    ChildProcess pointing({"xdotool", "mousemove", std::to_string(strip->x), std::to_string(strip->y)},
                          in_.environment);
    if (pointing.exitStatus(kPatience) != 0) return std::nullopt;
    return strip;
}

std::optional<double> PanelBenchmark::open(ChildProcess& child, const std::string& what) {
    watcher_.skipPast();
    // Not waited for: the events are timed as they come.
    ChildProcess opener({"xdotool", "click", "1"}, in_.environment);
    const auto popover = watcher_.nextMapped("norvane", kPatience, [&child] { return child.hasEnded(); });
    const auto press = watcher_.lastPress();
    const auto half = popover ? watcher_.halfPainted(popover->window, kEntering) : std::nullopt;
    if (!half || !press || opener.exitStatus(kPatience) != 0) {
        verdict_.fail(what + ": nothing was shown");
        return std::nullopt;
    }
    popover_ = popover->window;
    return std::chrono::duration<double, std::milli>(*half - *press).count();
}

bool PanelBenchmark::close() {
    ChildProcess closer({"xdotool", "click", "1"}, in_.environment);
    const bool isHidden = watcher_.waitUntilHidden(popover_, kPatience);
    // It closes on the press: one that is cut off before the release would leave the button down.
    if (isHidden && closer.exitStatus(kPatience) == 0) return true;
    verdict_.fail("panels: a second click left it open");
    return false;
}

std::optional<double> PanelBenchmark::load(ChildProcess& child) {
    std::this_thread::sleep_for(kSettling);
    const auto programBefore = cpuTimeOf(child.id());
    const auto serverBefore = cpuTimeOf(server_);
    const auto begin = Clock::now();
    std::this_thread::sleep_for(kWatched);
    const auto programAfter = cpuTimeOf(child.id());
    const auto serverAfter = cpuTimeOf(server_);
    const std::chrono::duration<double> time = Clock::now() - begin;
    if (!programBefore || !programAfter || !serverBefore || !serverAfter) return std::nullopt;
    const std::chrono::duration<double> spent =
        (*programAfter - *programBefore) + (*serverAfter - *serverBefore);
    return 100 * spent / time;
}

void PanelBenchmark::judgeLoad(ChildProcess& child, const std::string& what, double bound) {
    const auto percent = load(child);
    if (!percent) return verdict_.fail(what + ": the kernel tells nothing of the program");
    verdict_.judge(what + ", with the server", *percent, "%", bound);
}

}  // namespace norvane
