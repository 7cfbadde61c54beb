#include "ShownProgram.h"

#include <chrono>

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;
// Longer than the entrance.
constexpr auto kEntering = 600ms;
constexpr const char* kWindowClass = "norvane";
const std::vector<std::string> kClick{"xdotool", "click", "1"};

double milliseconds(DisplayWatcher::Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

}  // namespace

ShownProgram::ShownProgram(const std::string& program, const Surroundings& in, DisplayWatcher& watcher)
    : in_(in), watcher_(watcher), child_((watcher.skipPast(), std::vector{program}), in.environment) {
    const auto strip = watcher_.nextShown(kWindowClass, kPatience, [this] { return child_.hasEnded(); });
    if (!strip) return;
    millisecondsToStrip_ = milliseconds(strip->painted - child_.startedAt());
    ChildProcess pointing({"xdotool", "mousemove", std::to_string(strip->x), std::to_string(strip->y)},
                          in_.environment);
    isThere_ = pointing.exitStatus(kPatience) == 0;
}

std::optional<double> ShownProgram::open() {
    watcher_.skipPast();
    // Not waited for: the events are timed as they come.
    ChildProcess opener(kClick, in_.environment);
    const auto popover = watcher_.nextMapped(kWindowClass, kPatience, [this] { return child_.hasEnded(); });
    const auto press = watcher_.lastPress();
    const auto half = popover ? watcher_.halfPainted(popover->window, kEntering) : std::nullopt;
    if (!half || !press || opener.exitStatus(kPatience) != 0) return std::nullopt;
    popover_ = popover->window;
    return milliseconds(*half - *press);
}

bool ShownProgram::close() {
    ChildProcess closer(kClick, in_.environment);
    const bool isHidden = watcher_.waitUntilHidden(popover_, kPatience);
    // It closes on the press: one that is cut off before the release would leave the button down.
    return closer.exitStatus(kPatience) == 0 && isHidden;
}

}  // namespace norvane
