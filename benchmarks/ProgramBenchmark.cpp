#include <sys/types.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "DisplayWatcher.h"
#include "Environment.h"
#include "PanelBenchmark.h"
#include "ProcessFigures.h"
#include "ScratchFolder.h"
#include "Surroundings.h"
#include "Verdict.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Clock = DisplayWatcher::Clock;

constexpr double kMostMillisecondsToPaint = 40;
constexpr double kMostSwitchesASecond = 2.2;
constexpr double kMostPrivateDirtyMiB = 3;

constexpr int kStarts = 20;
constexpr auto kSettling = 3s;
constexpr auto kHidden = 30s;
constexpr auto kPatience = 10s;
constexpr const char* kWindowClass = "norvane";

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

bool hasThermalZones() {
    std::error_code error;
    for (std::filesystem::directory_iterator zones("/sys/class/thermal", error), end; !error && zones != end;
         zones.increment(error)) {
        if (zones->path().filename().string().starts_with("thermal_zone")) return true;
    }
    return false;
}

class ProgramBenchmark {
 public:
    ProgramBenchmark(std::string program, DisplayWatcher& watcher, Verdict& verdict)
        : program_(std::move(program)), watcher_(watcher), verdict_(verdict) {}

    void measureStarts(const Surroundings& in) {
        // Once for the font cache, and for what the kernel keeps of the files.
        std::vector<double> mapped;
        std::vector<double> painted;
        for (int i = -1; i < kStarts; ++i) {
            watcher_.skipPast();
            ChildProcess child({program_}, in.environment);
            const auto strip = shownBy(child);
            if (!strip) return verdict_.fail("start, " + in.name + ": no strip was painted");
            if (i < 0) continue;
            mapped.push_back(milliseconds(strip->mapped - child.startedAt()));
            painted.push_back(milliseconds(strip->painted - child.startedAt()));
        }
        std::sort(mapped.begin(), mapped.end());
        std::sort(painted.begin(), painted.end());
        char more[96];
        std::snprintf(more, sizeof more, " (least %.1f, most %.1f; mapped after %.1f)", painted.front(),
                      painted.back(), mapped[mapped.size() / 2]);
        verdict_.judge("start to painted strip, " + in.name + ", median", painted[painted.size() / 2], "ms",
                       kMostMillisecondsToPaint, more);
    }

    void measureLife(const Surroundings& in) {
        watcher_.skipPast();
        ChildProcess child({program_}, in.environment);
        const auto strip = shownBy(child);
        if (!strip) return verdict_.fail("life, " + in.name + ": no strip was painted");
        measureHidden(child, in);
        measurePopover(child, in, *strip);
        if (child.hasEnded()) verdict_.fail("life, " + in.name + ": the program ended by itself");
    }

 private:
    std::optional<DisplayWatcher::Shown> shownBy(ChildProcess& child) {
        return watcher_.nextShown(kWindowClass, kPatience, [&child] { return child.hasEnded(); });
    }

    void measureHidden(const ChildProcess& child, const Surroundings& in) {
        std::this_thread::sleep_for(kSettling);
        const auto cpuBefore = cpuTimeOf(child.id());
        const auto before = voluntarySwitchesOf(child.id());
        const auto begin = Clock::now();
        // Looked at again and again, so that a thread that ends has been counted.
        std::map<pid_t, std::uint64_t> latest = before;
        while (Clock::now() - begin < kHidden) {
            std::this_thread::sleep_for(500ms);
            for (const auto& [thread, count] : voluntarySwitchesOf(child.id()))
                latest[thread] = count;
        }
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        const auto cpuAfter = cpuTimeOf(child.id());
        const auto memory = memoryOf(child.id());
        if (before.empty() || !cpuBefore || !cpuAfter || !memory)
            return verdict_.fail("hidden, " + in.name + ": the kernel tells nothing of the program");

        double all = 0;
        std::string threads;
        for (const auto& [thread, count] : latest) {
            const auto first = before.find(thread);
            const double switches = static_cast<double>(count - (first != before.end() ? first->second : 0));
            all += switches;
            char text[32];
            std::snprintf(text, sizeof text, "%s%.2f", threads.empty() ? "" : " + ", switches / seconds);
            threads += text;
        }
        const std::string switching = "hidden, " + in.name + ", voluntary switches";
        if (hasThermalZones()) {
            verdict_.tell(switching, all / seconds, "/s", " (" + threads + "; no bound with thermal zones)");
        } else {
            verdict_.judge(switching, all / seconds, "/s", kMostSwitchesASecond,
                           " (by threads: " + threads + ")");
        }
        verdict_.tell("hidden, " + in.name + ", processor time",
                      milliseconds(*cpuAfter - *cpuBefore) / seconds, "ms/s");
        verdict_.judge("hidden, " + in.name + ", private dirty", memory->privateDirtyMiB, "MiB",
                       kMostPrivateDirtyMiB);
        verdict_.tell("hidden, " + in.name + ", resident", memory->residentMiB, "MiB");
    }

    void measurePopover(ChildProcess& child, const Surroundings& in, const DisplayWatcher::Shown& strip) {
        const auto fail = [&](const char* what) { verdict_.fail("popover, " + in.name + ": " + what); };
        const std::vector<std::string> toStrip{"xdotool", "mousemove", std::to_string(strip.x),
                                               std::to_string(strip.y)};
        const std::vector<std::string> click{"xdotool", "click", "1"};
        if (ChildProcess(toStrip, in.environment).exitStatus(kPatience) != 0)
            return fail("xdotool cannot point");
        for (const char* const opening : {"first", "second"}) {
            watcher_.skipPast();
            // Not waited for: the events are timed as they come.
            ChildProcess opener(click, in.environment);
            const auto popover = shownBy(child);
            const auto press = watcher_.lastPress();
            if (!popover || !press) return fail("none was painted after a click");
            char more[64];
            std::snprintf(more, sizeof more, " (painted after %.2f)",
                          milliseconds(popover->painted - *press));
            verdict_.tell("popover, " + in.name + ", " + opening + " click to mapped",
                          milliseconds(popover->mapped - *press), "ms", more);
            if (opener.exitStatus(kPatience) != 0) return fail("xdotool cannot click");
            tellMemory(child, "popover, " + in.name + ", open 3 s", 3s);
            ChildProcess closer(click, in.environment);
            const bool isHidden = watcher_.waitUntilHidden(popover->window, kPatience);
            // It closes on the press: one that is cut off before the release would leave the button down.
            if (!isHidden || closer.exitStatus(kPatience) != 0) return fail("a second click left it open");
        }
        tellMemory(child, "popover, " + in.name + ", closed 30 s", 30s);
    }

    void tellMemory(const ChildProcess& child, const std::string& when, std::chrono::seconds after) {
        std::this_thread::sleep_for(after);
        const auto memory = memoryOf(child.id());
        if (!memory) return verdict_.fail(when + ": the kernel tells nothing of the program");
        verdict_.tell(when + ", resident", memory->residentMiB, "MiB");
        verdict_.tell(when + ", private dirty", memory->privateDirtyMiB, "MiB");
    }

    std::string program_;
    DisplayWatcher& watcher_;
    Verdict& verdict_;
};

int complain(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    return 2;
}

int run(const std::string& program, const std::string& serverProgram) {
    const ScratchFolder scratch;
    if (scratch.path().empty()) return complain("There is no room for temporary files.");
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
    if (!number) return complain("Xvfb does not start.");
    const Environment alone = plain.with("DISPLAY", ':' + *number);
    const auto watcher = DisplayWatcher::open(':' + *number);
    if (!watcher) return complain("The display cannot be watched.");

    ChildProcess bus({"dbus-daemon", "--session", "--nofork", "--print-address"}, alone,
                     ChildProcess::Output::read);
    const auto address = bus.firstLine(30s);
    if (!address) return complain("dbus-daemon does not start.");

    Verdict verdict;
    ProgramBenchmark benchmark(program, *watcher, verdict);
    const std::vector<Surroundings> all{
        {"no bus", alone},
        {"bus", alone.with("DBUS_SESSION_BUS_ADDRESS", *address).with("DBUS_SYSTEM_BUS_ADDRESS", *address)}};
    // Its settings are those of somebody who has been welcomed, here as well.
    PanelBenchmark panels(all.front(), scratch.path(), server.id(), *watcher, verdict);
    for (const Surroundings& surroundings : all)
        benchmark.measureStarts(surroundings);
    panels.measure(program);
    panels.measureManyProcessors(serverProgram);
    for (const Surroundings& surroundings : all)
        benchmark.measureLife(surroundings);
    return verdict.isGood() ? 0 : 1;
}

// Where this program lies.
std::filesystem::path ownFolder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

}  // namespace
}  // namespace norvane

int main(int argumentCount, char** arguments) {
    const std::filesystem::path folder = norvane::ownFolder();
    // The program lies where a build leaves it.
    const std::string program =
        argumentCount > 1 ? arguments[1] : (folder.parent_path() / "norvane").string();
    return norvane::run(program, (folder / "norvane_server_program").string());
}
