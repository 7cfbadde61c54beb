#include "platform/linux/DrmUtilization.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr MonotonicInstant kStart{1h};

DrmEngine timed(std::chrono::nanoseconds busy, std::uint64_t capacity = 1) {
    return {static_cast<std::uint64_t>(busy.count()), {}, {}, capacity};
}

DrmEngine counted(std::uint64_t busy, std::uint64_t total, std::uint64_t capacity = 1) {
    return {{}, busy, total, capacity};
}

// The clients "1", "2", … with one engine each.
DrmClientEngines clients(const char* engine, const std::vector<DrmEngine>& each) {
    DrmClientEngines made;
    for (const DrmEngine& of : each)
        made[std::to_string(made.size() + 1)] = {{engine, of}};
    return made;
}

TEST(DrmUtilization, IsThatOfTheBusiestEngineOverTwoSeconds) {
    const auto expect = [](const char* name, const DrmClientEngines& before, const DrmClientEngines& now,
                           std::optional<double> want) {
        DrmUtilization utilization;
        EXPECT_FALSE(utilization.percent(before, kStart)) << name << ": nothing to compare with";
        EXPECT_EQ(utilization.percent(now, kStart + 2s), want) << name;
    };
    const auto expectTimed = [&](const char* name, const std::vector<DrmEngine>& before,
                                 const std::vector<DrmEngine>& now, std::optional<double> want) {
        expect(name, clients("render", before), clients("render", now), want);
    };
    expectTimed("nobody", {}, {}, {});
    expectTimed("idle", {timed(5s)}, {timed(5s)}, 0.0);
    expectTimed("two share an engine", {timed(5s), timed(0s)}, {timed(5500ms), timed(1s)}, 75.0);
    expect("engines work side by side",
           {{"1", {{"render", timed(0s)}, {"video", timed(0s)}}}, {"2", {{"copy", timed(0s)}}}},
           {{"1", {{"render", timed(1s)}, {"video", timed(1500ms)}}}, {"2", {{"copy", timed(1s)}}}}, 75.0);
    expectTimed("two alike, one of them busy", {timed(0s, 2)}, {timed(2s, 2)}, 50.0);
    expectTimed("only one says that there are two", {timed(0s, 2), timed(0s)}, {timed(1s, 2), timed(1s)},
                50.0);
    expectTimed("a counter began anew", {timed(9s), timed(0s)}, {timed(1s), timed(500ms)}, 25.0);
    expectTimed("more than there was", {timed(0s)}, {timed(9s)}, 100.0);
    const DrmEngine most{UINT64_MAX, {}, {}, 1};
    expectTimed("as much as can be written", {timed(0s), timed(0s)}, {most, most}, 100.0);
    expectTimed("a client came", {timed(0s)}, {timed(1s), timed(9s)}, 50.0);
    expect("another client instead", {{"1", {{"render", timed(0s)}}}}, {{"2", {{"render", timed(1s)}}}}, {});
    expect("another engine instead", {{"1", {{"render", timed(0s)}}}}, {{"1", {{"video", timed(1s)}}}}, {});
    expectTimed("cycles", {counted(10, 1000)}, {counted(30, 1100)}, 20.0);
    expectTimed("cycles of clients that were looked at one after another",
                {counted(10, 1000), counted(0, 1000)}, {counted(30, 1100), counted(30, 1200)}, 25.0);
    expectTimed("cycles of four alike", {counted(0, 1000, 4)}, {counted(200, 1100, 4)}, 50.0);
    expectTimed("a clock that stands still", {counted(10, 1000)}, {counted(30, 1000)}, {});
    expectTimed("a clock that began anew", {counted(10, 1000)}, {counted(30, 5)}, {});
    expectTimed("neither time nor a clock", {DrmEngine{}}, {DrmEngine{}}, {});
}

TEST(DrmUtilization, GoesFromLookToLook) {
    DrmUtilization utilization;
    utilization.percent({{"1", {{"render", timed(0s)}}}}, kStart);
    EXPECT_EQ(utilization.percent({{"1", {{"render", timed(1s)}}}}, kStart + 2s), 50.0);
    EXPECT_FALSE(utilization.percent({{"1", {{"render", timed(9s)}}}}, kStart + 2s)) << "no time has passed";
    EXPECT_EQ(utilization.percent({{"1", {{"render", timed(10s)}}}}, kStart + 6s), 25.0);
}

}  // namespace
}  // namespace norvane
