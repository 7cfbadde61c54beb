#include <gtest/gtest.h>

#include <string>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

TEST(ScriptedLoop, RunsTasksInTheOrderInWhichTheyWereEnqueuedAcrossQueues) {
    ScriptedMachine machine;
    const auto serial = machine.dispatch.makeSerialQueue("one");
    std::string ran;
    serial->async([&] {
        ran += 'a';
        machine.dispatch.mainQueue().async([&] { ran += 'd'; });
    });
    machine.dispatch.mainQueue().async([&] { ran += 'b'; });
    serial->async([&] { ran += 'c'; });
    EXPECT_EQ(ran, "");
    machine.settle();
    EXPECT_EQ(ran, "abcd");
}

TEST(ScriptedLoop, FiresTimersInTheOrderOfTheirDeadlinesWithTheClocksThere) {
    ScriptedMachine machine;
    std::string fired;
    const auto start = machine.time.monotonic();
    const auto late = machine.dispatch.mainQueue().after(2s, [&] {
        fired += 'l';
        EXPECT_EQ(machine.time.monotonic() - start, 2s);
    });
    const auto early = machine.dispatch.mainQueue().after(1s, [&] { fired += 'e'; });
    auto cancelled = machine.dispatch.mainQueue().after(1500ms, [&] { fired += 'x'; });
    machine.dispatch.backgroundQueue().asyncAfter(1s, [&] { fired += 'b'; });
    machine.advance(1s);
    EXPECT_EQ(fired, "eb");
    cancelled.cancel();
    machine.advance(5s);
    EXPECT_EQ(fired, "ebl");
    EXPECT_EQ(machine.time.monotonic() - start, 6s);
}

TEST(ScriptedLoop, TurnsMissedFiringsOfATimerIntoOneAndStaysOnTheGrid) {
    ScriptedMachine machine;
    const auto serial = machine.dispatch.makeSerialQueue("held");
    std::vector<std::chrono::nanoseconds> fired;
    const auto start = machine.time.monotonic();
    auto timer = serial->every(1s, [&] { fired.push_back(machine.time.monotonic() - start); });
    machine.advance(1s);
    machine.dispatch.serialLoopQueue("held")->hold();
    machine.advance(3500ms);
    EXPECT_EQ(fired, (std::vector<std::chrono::nanoseconds>{0s, 1s}));
    machine.dispatch.serialLoopQueue("held")->letGo();
    machine.settle();
    machine.advance(500ms);
    EXPECT_EQ(fired, (std::vector<std::chrono::nanoseconds>{0s, 1s, 4500ms, 5s}));
    timer.reset();
    machine.advance(10s);
    EXPECT_EQ(fired.size(), 4U);
}

TEST(ScriptedLoop, DropsWhatWaitsOnAQueueThatIsGoneAndATimerThatEndedBeforeItsTurn) {
    ScriptedMachine machine;
    int ran = 0;
    auto serial = machine.dispatch.makeSerialQueue("gone");
    serial->async([&] { ++ran; });
    serial.reset();
    auto other = machine.dispatch.makeSerialQueue("other");
    auto timer = other->every(1s, [&] { ++ran; });
    other->async([&] { timer.reset(); });
    machine.advance(5s);
    EXPECT_EQ(ran, 0);
}

TEST(ScriptedTime, StepsEachClockAlone) {
    ScriptedMachine machine;
    const auto wall = machine.time.wall();
    const auto monotonic = machine.time.monotonic();
    const auto uptime = machine.time.uptime();
    machine.suspend(1h);
    EXPECT_EQ(machine.time.wall() - wall, 1h);
    EXPECT_EQ(machine.time.monotonic(), monotonic);
    EXPECT_EQ(machine.time.uptime() - uptime, 1h);
    machine.time.stepWallClock(-2h);
    EXPECT_EQ(machine.time.wall() - wall, -1h);
    EXPECT_EQ(machine.time.uptime() - uptime, 1h);
    machine.time.stepUptime(5s);
    EXPECT_EQ(machine.time.uptime() - uptime, 1h + 5s);
    EXPECT_EQ(machine.time.wall() - wall, -1h);
    const auto serial = machine.dispatch.makeSerialQueue("stopped");
    int fired = 0;
    const auto timer = serial->every(1s, [&] { ++fired; });
    machine.settle();
    machine.time.stepMonotonicClock(10s);
    EXPECT_EQ(machine.time.monotonic() - monotonic, 10s);
    EXPECT_EQ(machine.time.uptime() - uptime, 1h + 5s);
    machine.settle();
    EXPECT_EQ(fired, 2) << "ten missed firings are one";
    machine.advance(1s);
    EXPECT_EQ(fired, 3);
    EXPECT_EQ(machine.time.monotonic() - monotonic, 11s);
}

}  // namespace
}  // namespace norvane
