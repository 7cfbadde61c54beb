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

TEST(DrmUtilization, IsThatOfTheBusiestEngineOverTwoSeconds) {
    struct Case {
        const char* name;
        DrmClientEngines before;
        DrmClientEngines now;
        std::optional<double> want;
    };
    for (const Case& c : {
             Case{"nobody", {}, {}, std::nullopt},
             Case{"idle", {{"1", {{"render", timed(5s)}}}}, {{"1", {{"render", timed(5s)}}}}, 0.0},
             Case{"a quarter", {{"1", {{"render", timed(5s)}}}}, {{"1", {{"render", timed(5500ms)}}}}, 25.0},
             Case{"two clients share an engine",
                  {{"1", {{"render", timed(5s)}}}, {"2", {{"render", timed(0s)}}}},
                  {{"1", {{"render", timed(5500ms)}}}, {"2", {{"render", timed(1s)}}}},
                  75.0},
             Case{"engines work side by side",
                  {{"1", {{"render", timed(0s)}, {"video", timed(0s)}}}, {"2", {{"copy", timed(0s)}}}},
                  {{"1", {{"render", timed(1s)}, {"video", timed(1500ms)}}}, {"2", {{"copy", timed(1s)}}}},
                  75.0},
             Case{"two alike, one of them busy",
                  {{"1", {{"video", timed(0s, 2)}}}},
                  {{"1", {{"video", timed(2s, 2)}}}},
                  50.0},
             Case{"only one of the clients says that there are two",
                  {{"1", {{"video", timed(0s, 2)}}}, {"2", {{"video", timed(0s)}}}},
                  {{"1", {{"video", timed(1s, 2)}}}, {"2", {{"video", timed(1s)}}}},
                  50.0},
             Case{"a counter began anew",
                  {{"1", {{"render", timed(9s)}}}, {"2", {{"render", timed(0s)}}}},
                  {{"1", {{"render", timed(1s)}}}, {"2", {{"render", timed(500ms)}}}},
                  25.0},
             Case{"more than there was",
                  {{"1", {{"render", timed(0s)}}}},
                  {{"1", {{"render", timed(9s)}}}},
                  100.0},
             Case{
                 "as much as can be written",
                 {{"1", {{"render", {0, {}, {}, 1}}}}, {"2", {{"render", {0, {}, {}, 1}}}}},
                 {{"1", {{"render", {UINT64_MAX, {}, {}, 1}}}}, {"2", {{"render", {UINT64_MAX, {}, {}, 1}}}}},
                 100.0},
             Case{"a client came",
                  {{"1", {{"render", timed(0s)}}}},
                  {{"1", {{"render", timed(1s)}}}, {"2", {{"render", timed(9s)}}}},
                  50.0},
             Case{"another client instead",
                  {{"1", {{"render", timed(0s)}}}},
                  {{"2", {{"render", timed(1s)}}}},
                  {}},
             Case{"another engine instead",
                  {{"1", {{"render", timed(0s)}}}},
                  {{"1", {{"video", timed(1s)}}}},
                  {}},
             Case{"cycles",
                  {{"1", {{"rcs", counted(10, 1000)}}}},
                  {{"1", {{"rcs", counted(30, 1100)}}}},
                  20.0},
             Case{"cycles of clients that were looked at one after another",
                  {{"1", {{"rcs", counted(10, 1000)}}}, {"2", {{"rcs", counted(0, 1000)}}}},
                  {{"1", {{"rcs", counted(30, 1100)}}}, {"2", {{"rcs", counted(30, 1200)}}}},
                  25.0},
             Case{"cycles of four alike",
                  {{"1", {{"ccs", counted(0, 1000, 4)}}}},
                  {{"1", {{"ccs", counted(200, 1100, 4)}}}},
                  50.0},
             Case{"a clock that stands still",
                  {{"1", {{"rcs", counted(10, 1000)}}}},
                  {{"1", {{"rcs", counted(30, 1000)}}}},
                  std::nullopt},
             Case{"a clock that began anew",
                  {{"1", {{"rcs", counted(10, 1000)}}}},
                  {{"1", {{"rcs", counted(30, 5)}}}},
                  std::nullopt},
             Case{"neither time nor a clock", {{"1", {{"gpu", {}}}}}, {{"1", {{"gpu", {}}}}}, std::nullopt},
         }) {
        DrmUtilization utilization;
        EXPECT_FALSE(utilization.percent(c.before, kStart)) << c.name << ": nothing to compare with";
        EXPECT_EQ(utilization.percent(c.now, kStart + 2s), c.want) << c.name;
    }
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
