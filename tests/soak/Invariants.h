#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HeldRule.h"
#include "platform/AccessibleNode.h"
#include "platform/Cancellation.h"
#include "platform/scripted/ScriptedPopoverWindow.h"
#include "shell/NorvaneApp.h"
#include "SoakMachine.h"
#include "telemetry/BandRule.h"

namespace norvane {

// What holds at every tick of every life. The first that does not is kept.
class Invariants {
 public:
    explicit Invariants(SoakMachine& machine);
    Invariants(const Invariants&) = delete;
    Invariants& operator=(const Invariants&) = delete;

    // The application that has just been launched, before its first tick; and before it ends.
    void follow(NorvaneApp& app);
    void leave();

    // At rest: nothing is ready to run, but for queues that are held.
    void look();
    // That the keyboard reaches everything in the window, in which nothing moves.
    void tour(ScriptedPopoverWindow& window);
    // A stretch in which nobody did anything and nothing was shown.
    void lookAtQuiet(std::uint64_t turns, std::uint64_t seconds);
    // The bytes in use, of a machine and an application at rest that look the same each time.
    void weigh();
    // At the end: by how many bytes they grew over the last half of all weighings; none where these are few.
    std::optional<long long> growth();

    void expect(bool holds, std::string_view name, const std::string& detail = {}) {
        if (!holds && !broken_) broken_ = std::string(name) + ": " + detail;
    }
    const std::optional<std::string>& broken() const { return broken_; }

    // The parts that a window is made of, by its width: "main", "settings", "info", "welcome".
    static std::string_view nameOf(const ScriptedPopoverWindow& window);
    static AccessibleNode treeOf(ScriptedPopoverWindow& window);

    std::uint64_t ticks = 0, fullTicks = 0, trees = 0, alerts = 0;

 private:
    // What decided the light states of a tick.
    struct Asked {
        WallInstant now;
        std::int64_t pressure;
        ThermalLevel thermal;
    };
    struct Stretch {
        WallInstant start;
        bool isTold = false;
    };

    void lightHalf();
    void fullHalf();
    void published(const MenuBarStats& stats);
    void published(const SystemSnapshot& snapshot);
    void told(const std::string& title);
    WallInstant now() const { return machine_.platform().wallClock.now(); }

    SoakMachine& machine_;
    NorvaneApp* app_ = nullptr;
    std::vector<Cancellation> subscriptions_;
    std::optional<std::string> broken_;

    std::deque<Asked> asked_;  // not published yet
    HeldRule cpu_, memory_, system_;
    std::deque<double> lastCPU_;
    std::vector<bool> flags_;
    std::optional<ImpactState> impact_;
    std::optional<WallInstant> earliestSinceImpact_;
    // Latches, as far as they are closed.
    std::map<std::string_view, std::optional<Stretch>> stretches_;
    std::optional<WallInstant> storageTold_, batteryTold_;
    std::vector<long long> weights_;
};

}  // namespace norvane
