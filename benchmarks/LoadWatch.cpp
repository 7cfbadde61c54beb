#include "LoadWatch.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <thread>

#include "ProcessFigures.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kPieces = 10;
constexpr auto kPiece = 6s;
// Threads that end in between are counted as far as this.
constexpr auto kLook = 500ms;

struct Figures {
    std::chrono::nanoseconds program;
    std::chrono::nanoseconds server;
    std::chrono::nanoseconds bareLoop;
};

std::optional<Figures> figuresOf(pid_t program, pid_t server, pid_t bareLoop) {
    const auto one = cpuTimeOf(program);
    const auto two = cpuTimeOf(server);
    const auto three = cpuTimeOf(bareLoop);
    if (!one || !two || !three) return std::nullopt;
    return Figures{*one, *two, *three};
}

double milliseconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

}  // namespace

std::optional<LoadWatch::Loads> LoadWatch::watch() const {
    Loads loads;
    for (int piece = 0; piece < kPieces; ++piece) {
        const auto begin = Clock::now();
        const auto before = figuresOf(program_, server_, bareLoop_);
        const auto switchesBefore = voluntarySwitchesOf(program_);
        auto switches = switchesBefore;
        while (Clock::now() - begin < kPiece) {
            std::this_thread::sleep_for(kLook);
            for (const auto& [thread, count] : voluntarySwitchesOf(program_))
                switches[thread] = count;
        }
        const auto after = figuresOf(program_, server_, bareLoop_);
        if (!before || !after || switchesBefore.empty()) return std::nullopt;
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        loads.program.push_back(milliseconds(after->program - before->program) / seconds);
        loads.server.push_back(milliseconds(after->server - before->server) / seconds);
        loads.both.push_back(loads.program.back() + loads.server.back());
        loads.bareLoop.push_back(milliseconds(after->bareLoop - before->bareLoop) / seconds);
        std::uint64_t all = 0;
        for (const auto& [thread, count] : switches) {
            const auto first = switchesBefore.find(thread);
            all += count - (first != switchesBefore.end() ? first->second : 0);
        }
        loads.switches.push_back(static_cast<double>(all) / seconds);
    }
    return loads;
}

}  // namespace norvane
