#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scenario/Json.h"
#include "scenario/ShownThing.h"
#include "scenario/Sight.h"

namespace norvane {

// Writes down what is to be seen while a scenario is played: which things, and at which moments.
class Transcript {
 public:
    using Print = std::function<void(std::string_view line)>;

    explicit Transcript(Print print);

    // What is shown from now on, in this order. False, and nothing done, where a name is not known.
    bool show(const std::vector<std::string>& names);

    // When a line is printed: at each change, then with what has changed; at each tick; at each multiple of
    // an interval; not at all. `now` is the time since the start.
    void printChanges();
    void printTicks() { mode_ = Mode::ticks; }
    void printEvery(std::chrono::nanoseconds interval, std::chrono::nanoseconds now);
    void printNothing() { mode_ = Mode::nothing; }

    // A line as it stands.
    void note(std::string_view text) { print_(text); }
    // A line with everything, whatever else is printed.
    void printNow(const Sight& sight, std::chrono::nanoseconds now);

    // To be called whenever something may have happened. What came and went in between is not seen.
    void look(const Sight& sight, std::chrono::nanoseconds now);
    // The next time at which it is to be called, whatever happens; none if there is none.
    std::optional<std::chrono::nanoseconds> nextLook() const;

 private:
    enum class Mode { changes, ticks, every, nothing };

    void printLine(const Sight& sight, std::chrono::nanoseconds now, bool onlyChanges);
    void tellLogs(const Sight& sight, std::chrono::nanoseconds now);

    Print print_;
    std::vector<const ShownThing*> shown_;
    Mode mode_ = Mode::changes;
    std::chrono::nanoseconds interval_{0};
    std::chrono::nanoseconds next_{0};
    // As last printed.
    std::map<const ShownThing*, Json> last_;
    // Entries of each log that have been told or passed over.
    std::map<const ShownThing*, std::size_t> told_;
    std::uint64_t ticks_ = 0;
};

}  // namespace norvane
