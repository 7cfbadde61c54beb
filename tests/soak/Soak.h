#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "Chance.h"
#include "Invariants.h"
#include "shell/NorvaneApp.h"
#include "SoakMachine.h"

namespace norvane {

// Many days of the whole application on a machine, with a user, to whom anything may happen.
class Soak {
 public:
    Soak(std::uint64_t seed, int days);

    // Lives through all of it, or up to the first invariant that does not hold. Ends with a line of figures.
    bool run();

 private:
    using Milliseconds = std::chrono::milliseconds;
    // What happens again and again, at any time, and how much time is between two of them on the average.
    struct Habit {
        Milliseconds mean;
        void (Soak::*act)();
    };
    static const Habit kHabits[];

    void later(Milliseconds delay, std::function<void()> act);
    void keep(const Habit& habit);
    void advance(std::chrono::nanoseconds by);
    void note(const std::string& what);

    void changeMachine();
    void changePort();
    void strike();
    void stall();
    void suspend();
    void stepClock();
    void changePanel();
    void changeLook();
    void changePreference();
    void restart();
    void comeBy();
    void visitFor(std::uint64_t steps);
    void doSomething();
    void pointAtSomething(ScriptedPopoverWindow& window);
    void pin(bool isWanted);
    void closeAll();
    void evening();

    void launch();
    void quit();
    bool isHeld() const { return heldUntil_ > machine_.scripted.time.monotonic(); }
    bool mayRestart() const;
    ScriptedWindowServer& desktop() { return machine_.scripted.windowServer; }

    std::uint64_t seed_;
    int days_;
    Chance chance_;
    SoakMachine machine_{chance_};
    Invariants invariants_{machine_};
    MonotonicInstant begin_;
    MonotonicInstant heldUntil_;
    std::multimap<MonotonicInstant, std::function<void()>> agenda_;
    std::deque<std::string> lately_;
    bool isVisited_ = false;
    std::uint64_t visits_ = 0;
    std::uint64_t acts_ = 0;
    int day_ = 0;
    std::optional<NorvaneApp> app_;
};

}  // namespace norvane
