#include "scenario/ScenarioPlayer.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedPopoverWindow.h"
#include "preferences/DefaultsKeys.h"
#include "scenario/Durations.h"
#include "scenario/Objection.h"
#include "scenario/SettledTree.h"

namespace norvane {
namespace {

using namespace std::chrono;

// The middle of the first node of that name, in the points of its surface.
std::optional<Point> middleOf(const AccessibleNode& node, std::string_view name) {
    if (node.name == name) return Point{node.frame.midX(), node.frame.midY()};
    for (const AccessibleNode& child : node.children) {
        if (const auto found = middleOf(child, name)) return found;
    }
    return std::nullopt;
}

}  // namespace

const ScenarioPlayer::Statement ScenarioPlayer::kStatements[] = {
    {"wait", &ScenarioPlayer::playWait},
    {"suspend", &ScenarioPlayer::playSuspend},
    {"stepWallClock", &ScenarioPlayer::playStepWallClock},
    {"user", &ScenarioPlayer::playUser},
    {"press", &ScenarioPlayer::playPress},
    {"clickOn", &ScenarioPlayer::playClickOn},
    {"note", &ScenarioPlayer::playNote},
    {"show", &ScenarioPlayer::playShow},
    {"print", &ScenarioPlayer::playPrint},
};

ScenarioPlayer::ScenarioPlayer(Transcript::Print print) : transcript_(std::move(print)) {
    machine_.scripted.userDefaults.changeFromOutside(defaultskey::kHasSeenWelcome, true);
}

void ScenarioPlayer::play(std::string_view line) {
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) return;
    const Json object = parsedJson(line);
    if (!object.is_object()) throw Objection("is no object");
    for (const auto& [name, value] : object.items()) {
        const Given given(name, value);
        const auto found = std::find_if(std::begin(kStatements), std::end(kStatements),
                                        [&key = name](const Statement& one) { return one.name == key; });
        if (found != std::end(kStatements)) {
            (this->*found->play)(given);
        } else if (!machine_.answer(name, given)) {
            throw Objection("\"" + name + "\" is not known");
        }
        settle();
    }
}

// --- The program ---

void ScenarioPlayer::launch() {
    hasLaunched_ = true;
    machine_.scripted.application.terminated = false;
    app_.emplace(machine_.scripted.platform());
    app_->launch();
    explanations_.emplace(app_->delegate().statusBarController()->sampler(), app_->preferences(),
                          machine_.scripted.processInfo);
    settle();
}

void ScenarioPlayer::needProgram() {
    if (!hasLaunched_) launch();
    if (!app_) throw Objection("the program does not run any more: {\"user\": \"launch\"} starts it again");
}

void ScenarioPlayer::settle() {
    machine_.scripted.settle();
    if (app_ && machine_.scripted.application.terminated) {
        explanations_.reset();
        app_.reset();
    }
    if (hasLaunched_) transcript_.look(sight(), elapsed());
}

// --- Time ---

void ScenarioPlayer::leaveFor(nanoseconds next) {
    if (leaving_) leaving_(sight(), elapsed(), next);
}

void ScenarioPlayer::needRoom(const Given& given, nanoseconds wallBy, nanoseconds uptimeBy) const {
    constexpr hours kCentury{876'000};
    const ScriptedTime& time = machine_.scripted.time;
    const nanoseconds wall = time.wall().time_since_epoch() + wallBy;
    if (wall < nanoseconds::zero() || wall > 2 * kCentury || time.uptime() + uptimeBy > kCentury) {
        given.refuse("a time that leaves the clocks within their range");
    }
}

void ScenarioPlayer::playWait(const Given& given) {
    const nanoseconds wait = given.duration();
    needRoom(given, wait, wait);
    if (!hasLaunched_) launch();
    ScriptedMachine& machine = machine_.scripted;
    const MonotonicInstant end = machine.time.monotonic() + wait;
    // From one moment at which something is due to the next, so that each is seen when all of it is done.
    while (machine.time.monotonic() < end) {
        const MonotonicInstant now = machine.time.monotonic();
        MonotonicInstant next = std::min(end, machine.loop.nextFiring().value_or(end));
        if (const auto look = transcript_.nextLook()) next = std::min(next, now + (*look - elapsed()));
        next = std::max(next, now);
        if (next > now) leaveFor(elapsed() + (next - now));
        machine.advance(next - now);
        settle();
    }
}

void ScenarioPlayer::playSuspend(const Given& given) {
    const nanoseconds sleep = given.duration();
    needRoom(given, sleep, sleep);
    leaveFor(elapsed() + sleep);
    machine_.scripted.suspend(sleep);
}

void ScenarioPlayer::playStepWallClock(const Given& given) {
    const std::string& text = given.text();
    const bool isSigned = text.starts_with('-') || text.starts_with('+');
    const auto distance = durationOf(std::string_view(text).substr(isSigned ? 1 : 0));
    if (!distance) given.refuse("a time such as \"+1h\" or \"-30min\"");
    const nanoseconds step = text.starts_with('-') ? -*distance : *distance;
    needRoom(given, step, nanoseconds::zero());
    machine_.scripted.time.stepWallClock(step);
}

// --- The user ---

void ScenarioPlayer::open() {
    needProgram();
    if (!isOpen()) machine_.scripted.windowServer.clickStatusItem();
    settle();
}

bool ScenarioPlayer::clickOn(std::string_view name) {
    if (name.empty()) return false;  // what has no name is not to be found by it
    ScriptedPopoverWindow& window = *machine_.scripted.windowServer.windows().back();
    const auto middle = middleOf(settledTree(window, machine_.scripted.time.monotonic()), name);
    if (!middle) return false;
    machine_.scripted.windowServer.click(
        {window.frame().minX() + middle->x, window.frame().minY() + middle->y});
    return true;
}

void ScenarioPlayer::playUser(const Given& given) {
    ScriptedWindowServer& desktop = machine_.scripted.windowServer;
    if (given.says("launch")) {
        if (app_) throw Objection("the program runs already");
        launch();
        return;
    }
    needProgram();
    if (given.says("click")) {
        desktop.clickStatusItem();
    } else if (given.says("open")) {
        open();
    } else if (given.says("close")) {
        if (isOpen()) desktop.clickStatusItem();
    } else if (given.says("clickOutside")) {
        desktop.click({0, desktop.screen ? desktop.screen->maxY() - 1 : 0});
    } else if (given.says("focusElsewhere")) {
        desktop.focusElsewhere();
    } else if (given.says("quit")) {
        open();
        if (!isOpen() || !clickOn("Quit")) throw Objection("the dashboard has no \"Quit\"");
    } else {
        given.refuse(R"("launch", "click", "open", "close", "clickOutside", "focusElsewhere" or "quit")");
    }
}

void ScenarioPlayer::playPress(const Given& given) {
    using Key = KeyEvent::Key;
    constexpr std::pair<std::string_view, Key> kKeys[] = {
        {"escape", Key::escape}, {"tab", Key::tab},   {"backTab", Key::backTab},
        {"space", Key::space},   {"up", Key::up},     {"return", Key::returnKey},
        {"down", Key::down},     {"left", Key::left}, {"right", Key::right}};
    needProgram();
    for (const auto& [name, key] : kKeys) {
        if (!given.says(name)) continue;
        machine_.scripted.windowServer.press(key);
        return;
    }
    given.refuse(R"("escape", "tab", "backTab", "space", "return", "up", "down", "left" or "right")");
}

void ScenarioPlayer::playClickOn(const Given& given) {
    const std::string& name = given.text();
    needProgram();
    if (!isOpen()) throw Objection("the dashboard is closed");
    if (!clickOn(name)) throw Objection("the dashboard has no \"" + name + "\"");
}

// --- The transcript ---

void ScenarioPlayer::playNote(const Given& given) {
    transcript_.note(given.text());
}

void ScenarioPlayer::playShow(const Given& given) {
    std::vector<std::string> names;
    for (const Given& name : given.items()) {
        if (shownThingsNamed(name.text()).empty())
            throw Objection("there is no \"" + name.text() + "\" to show");
        names.push_back(name.text());
    }
    transcript_.show(names);
}

void ScenarioPlayer::playPrint(const Given& given) {
    if (given.says("now")) {
        if (!hasLaunched_) launch();
        transcript_.printNow(sight(), elapsed());
    } else if (given.says("tick")) {
        transcript_.printTicks();
    } else if (given.says("changes")) {
        transcript_.printChanges();
    } else if (given.says("nothing")) {
        transcript_.printNothing();
    } else if (given.isRecord()) {
        given.takeMembers({{"every", [this](const Given& interval) {
                                transcript_.printEvery(interval.duration(), elapsed());
                            }}});
    } else {
        given.refuse(R"("changes", "tick", {"every": "10s"}, "nothing" or "now")");
    }
}

}  // namespace norvane
