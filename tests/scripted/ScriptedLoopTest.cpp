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

TEST(ScriptedProcessors, CountTicksOfTheirLoadAsTimePasses) {
    ScriptedMachine machine;
    auto& processors = machine.hostPort.processors;
    processors.setLoad(25);
    processors.setLoad(0, 100);
    machine.advance(2s);
    machine.suspend(1h);  // asleep, no ticks
    const ProcessorInfo each = processors.each();
    EXPECT_EQ(each.processorCount, 4U);
    EXPECT_EQ(std::vector<std::int32_t>(each.ticks.begin(), each.ticks.begin() + 8),
              (std::vector<std::int32_t>{200, 0, 0, 0, 50, 0, 150, 0}));
    EXPECT_EQ(processors.total(), (HostCPULoadInfo{.user = 350, .system = 0, .idle = 450, .nice = 0}));
}

TEST(FixedTextRuler, WrapsAtWordsAndBreaksWordsThatFillALine) {
    FixedTextRuler ruler;
    const TextStyle ten{.font = {.size = 10}, .lineSpacing = 2};  // 6 points a character, 12.5 a line
    struct Case {
        const char* text;
        double width;
        Size size;
        int lines;
    };
    for (const Case& c :
         {Case{"", TextRuler::kUnlimitedWidth, {0, 12.5}, 1},
          Case{"four", TextRuler::kUnlimitedWidth, {24, 12.5}, 1},
          Case{"m\xC3\xBCll", TextRuler::kUnlimitedWidth, {24, 12.5}, 1}, Case{"one two", 24, {18, 27}, 2},
          Case{"one two", 18, {18, 27}, 2}, Case{"a     b", 12, {6, 27}, 2}, Case{"one  ", 24, {18, 12.5}, 1},
          Case{"abcdefgh", 24, {24, 27}, 2}, Case{"a\nb", TextRuler::kUnlimitedWidth, {6, 27}, 2},
          Case{"ab", 0, {6, 27}, 2}}) {
        const TextMetrics metrics = ruler.measure(c.text, ten, c.width);
        EXPECT_EQ(metrics.size.width, c.size.width) << c.text;
        EXPECT_EQ(metrics.size.height, c.size.height) << c.text;
        EXPECT_EQ(metrics.lines, c.lines) << c.text;
    }
}

}  // namespace
}  // namespace norvane
