#pragma once

#include <chrono>

#include "platform/MonotonicClock.h"
#include "platform/WallClock.h"

namespace norvane {

// The scripted machine's clocks. Time passes only where a test says so, and each clock can be stepped alone.
class ScriptedTime {
 public:
    ScriptedTime() : wallClock_(*this), monotonicClock_(*this) {}
    ScriptedTime(const ScriptedTime&) = delete;
    ScriptedTime& operator=(const ScriptedTime&) = delete;

    WallClock& wallClock() { return wallClock_; }
    MonotonicClock& monotonicClock() { return monotonicClock_; }

    WallInstant wall() const { return wall_; }
    MonotonicInstant monotonic() const { return monotonic_; }
    // Since the machine started, sleep included.
    std::chrono::nanoseconds uptime() const { return uptime_; }

    // The machine runs: all clocks move. Nothing is fired; that is `ScriptedLoop::advance`.
    void pass(std::chrono::nanoseconds by) {
        monotonic_ += by;
        suspend(by);
    }
    // The machine sleeps: the monotonic clock stands.
    void suspend(std::chrono::nanoseconds by) {
        wall_ += by;
        uptime_ += by;
    }
    // Each clock alone. Somebody sets the wall clock, forward or back.
    void stepWallClock(std::chrono::nanoseconds by) { wall_ += by; }
    // The process was stopped: what has come due since fires at the loop's next turn.
    void stepMonotonicClock(std::chrono::nanoseconds by) { monotonic_ += by; }
    void stepUptime(std::chrono::nanoseconds by) { uptime_ += by; }

 private:
    struct Wall final : WallClock {
        explicit Wall(const ScriptedTime& owner) : time(owner) {}
        WallInstant now() const override { return time.wall_; }
        const ScriptedTime& time;
    };
    struct Monotonic final : MonotonicClock {
        explicit Monotonic(const ScriptedTime& owner) : time(owner) {}
        MonotonicInstant now() const override { return time.monotonic_; }
        const ScriptedTime& time;
    };

    // 2026-01-01 00:00 UTC: whole seconds, so that elapsed seconds are exact in floating point.
    WallInstant wall_{std::chrono::seconds(1'767'225'600)};
    MonotonicInstant monotonic_{std::chrono::seconds(1'000)};
    std::chrono::nanoseconds uptime_{std::chrono::seconds(1'000)};
    Wall wallClock_;
    Monotonic monotonicClock_;
};

}  // namespace norvane
