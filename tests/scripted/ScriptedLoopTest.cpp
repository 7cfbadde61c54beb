#include <gtest/gtest.h>

#include <string>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

TEST(ScriptedLoop, RunsTasksAsTheyWereEnqueuedAndTimersAsTheyFallDueWithTheClocksThere) {
    ScriptedMachine machine;
    const auto start = machine.time.monotonic();
    const auto serial = machine.dispatch.makeSerialQueue("one");
    MainQueue& main = machine.dispatch.mainQueue();
    std::string ran;
    serial->async([&] {
        ran += 'a';
        main.async([&] { ran += 'd'; });
    });
    main.async([&] { ran += 'b'; });
    serial->async([&] { ran += 'c'; });
    const auto late = main.after(2s, [&] {
        ran += 'l';
        EXPECT_EQ(machine.time.monotonic() - start, 2s);
    });
    const auto early = main.after(1s, [&] { ran += 'e'; });
    auto cancelled = main.after(1500ms, [&] { ran += 'x'; });
    machine.dispatch.backgroundQueue().asyncAfter(1s, [&] { ran += 'f'; });
    EXPECT_EQ(ran, "");
    machine.settle();
    EXPECT_EQ(ran, "abcd");
    machine.advance(1s);
    EXPECT_EQ(ran, "abcdef");
    cancelled.cancel();
    machine.advance(5s);
    EXPECT_EQ(ran, "abcdefl");
    EXPECT_EQ(machine.time.monotonic() - start, 6s);
}

TEST(ScriptedLoop, TurnsMissedFiringsOfATimerIntoOneAndStaysOnTheGrid) {
    ScriptedMachine machine;
    const auto start = machine.time.monotonic();
    const auto serial = machine.dispatch.makeSerialQueue("held");
    std::vector<std::chrono::nanoseconds> fired;
    auto timer = serial->every(1s, [&] { fired.push_back(machine.time.monotonic() - start); });
    machine.advance(1s);
    machine.dispatch.serialLoopQueue("held")->hold();
    machine.advance(3500ms);
    machine.dispatch.serialLoopQueue("held")->letGo();
    machine.advance(500ms);
    machine.suspend(1h);  // the monotonic clock stands
    machine.time.stepMonotonicClock(10s);
    machine.settle();
    machine.advance(1s);
    EXPECT_EQ(fired, (std::vector<std::chrono::nanoseconds>{0s, 1s, 4500ms, 5s, 15s, 16s}));
    timer.reset();
    machine.advance(10s);
    EXPECT_EQ(fired.size(), 6U);
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

}  // namespace
}  // namespace norvane
