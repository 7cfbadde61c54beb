#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "scenario/Given.h"
#include "scenario/PlayedMachine.h"
#include "scenario/Sight.h"
#include "scenario/Transcript.h"

namespace norvane {

// Plays a machine's life in virtual time through the whole program and writes a transcript of it. The life is
// told in lines of JSON, each of which changes the machine, does something as its user, or lets time pass.
// The program starts by itself with the first line that needs it.
class ScenarioPlayer {
 public:
    // The user has been welcomed before, unless the scenario says otherwise.
    explicit ScenarioPlayer(Transcript::Print print);
    ScenarioPlayer(const ScenarioPlayer&) = delete;
    ScenarioPlayer& operator=(const ScenarioPlayer&) = delete;

    // Plays one line. Throws an `Objection` where it cannot be played; what stands before the objectionable
    // part has then been done.
    void play(std::string_view line);

    // Told, with what is to be seen, before the clock leaves a moment for a later one.
    using Leaving =
        std::function<void(const Sight&, std::chrono::nanoseconds now, std::chrono::nanoseconds next)>;
    void onLeaving(Leaving leaving) { leaving_ = std::move(leaving); }

    // What is to be seen at this moment.
    Sight sight() {
        return {machine_.scripted, app_ ? &*app_ : nullptr, explanations_ ? &*explanations_ : nullptr};
    }
    // Since the start of the scenario, sleep included.
    std::chrono::nanoseconds elapsed() const { return machine_.scripted.time.uptime() - start_; }

 private:
    struct Statement {
        std::string_view name;
        void (ScenarioPlayer::*play)(const Given&);
    };
    static const Statement kStatements[];

    void playWait(const Given& given);
    void playSuspend(const Given& given);
    void playStepWallClock(const Given& given);
    void playUser(const Given& given);
    void playPress(const Given& given);
    void playClickOn(const Given& given);
    void playNote(const Given& given);
    void playShow(const Given& given);
    void playPrint(const Given& given);

    void launch();
    void needProgram();
    void open();
    bool isOpen() const { return !machine_.scripted.windowServer.windows().empty(); }
    bool clickOn(std::string_view name);
    // Runs what is ready and writes down what there is to see.
    void settle();
    // Refuses what would take a clock beyond what it can count.
    void needRoom(const Given& given, std::chrono::nanoseconds wallBy,
                  std::chrono::nanoseconds uptimeBy) const;
    void leaveFor(std::chrono::nanoseconds next);

    PlayedMachine machine_;
    std::chrono::nanoseconds start_ = machine_.scripted.time.uptime();
    Transcript transcript_;
    Leaving leaving_;
    bool hasLaunched_ = false;
    // Last, so that it ends first, after what looks at it.
    std::optional<NorvaneApp> app_;
    std::optional<Explanations> explanations_;
};

}  // namespace norvane
