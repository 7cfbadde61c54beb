#include "scenario/Transcript.h"

#include <algorithm>
#include <utility>

#include "scenario/Durations.h"

namespace norvane {

Transcript::Transcript(Print print) : print_(std::move(print)) {
    show({"systemState", "label", "status", "notificationsAdded", "notificationsShown", "output"});
}

bool Transcript::show(const std::vector<std::string>& names) {
    std::vector<const ShownThing*> things;
    for (const std::string& name : names) {
        const auto named = shownThingsNamed(name);
        if (named.empty()) return false;
        things.insert(things.end(), named.begin(), named.end());
    }
    shown_ = std::move(things);
    last_.clear();
    return true;
}

void Transcript::printChanges() {
    mode_ = Mode::changes;
    last_.clear();
}

void Transcript::printEvery(std::chrono::nanoseconds interval, std::chrono::nanoseconds now) {
    mode_ = Mode::every;
    interval_ = interval;
    next_ = (now / interval + 1) * interval;
}

std::optional<std::chrono::nanoseconds> Transcript::nextLook() const {
    return mode_ == Mode::every ? std::optional(next_) : std::nullopt;
}

void Transcript::printNow(const Sight& sight, std::chrono::nanoseconds now) {
    printLine(sight, now, false);
}

void Transcript::look(const Sight& sight, std::chrono::nanoseconds now) {
    tellLogs(sight, now);
    const std::uint64_t ticksBefore = std::exchange(ticks_, sight.machine.hostPort.statistics.asked());
    switch (mode_) {
        case Mode::changes:
            printLine(sight, now, true);
            break;
        case Mode::ticks:
            if (ticks_ != ticksBefore) printLine(sight, now, false);
            break;
        case Mode::every:
            if (now < next_) break;
            next_ = (now / interval_ + 1) * interval_;
            printLine(sight, now, false);
            break;
        case Mode::nothing:
            break;
    }
}

void Transcript::printLine(const Sight& sight, std::chrono::nanoseconds now, bool onlyChanges) {
    std::string line;
    for (const ShownThing* thing : shown_) {
        if (thing->kind != ShownThing::Kind::value) continue;
        Json value = thing->shown(sight);
        const auto last = last_.find(thing);
        if (onlyChanges && last != last_.end() && last->second == value) continue;
        line += ' ' + thing->name + '=' + printedJson(value);
        last_.insert_or_assign(thing, std::move(value));
    }
    if (!line.empty()) print_(elapsedText(now) + line);
}

void Transcript::tellLogs(const Sight& sight, std::chrono::nanoseconds now) {
    for (const ShownThing& thing : shownThings()) {
        if (thing.kind != ShownThing::Kind::log) continue;
        const Json entries = thing.shown(sight);
        std::size_t& told = told_[&thing];
        const bool isShown =
            mode_ != Mode::nothing && std::find(shown_.begin(), shown_.end(), &thing) != shown_.end();
        for (; told < entries.size(); ++told) {
            if (isShown) print_(elapsedText(now) + ' ' + thing.name + ' ' + printedJson(entries[told]));
        }
    }
}

}  // namespace norvane
