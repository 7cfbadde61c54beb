#include "platform/linux/DrmUtilization.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Engines = std::vector<DrmEngine>;

DrmEngine timed(std::uint64_t milliseconds, std::uint64_t capacity = 1) {
    return {milliseconds * 1'000'000, {}, {}, capacity};
}

DrmEngine counted(std::uint64_t busy, std::uint64_t total) {
    return {{}, busy, total, 1};
}

// The clients "1", "2", … with one engine each.
DrmClientEngines clients(const Engines& each) {
    DrmClientEngines made;
    for (const DrmEngine& of : each)
        made[std::to_string(made.size() + 1)] = {{"render", of}};
    return made;
}

TEST(DrmUtilization, IsThatOfTheBusiestEngineSinceTheLastLook) {
    constexpr MonotonicInstant kStart{1h};
    const DrmEngine most{UINT64_MAX, {}, {}, 1};
    struct Case {
        const char* name;
        DrmClientEngines before;
        DrmClientEngines now;
        std::optional<double> want;
    };
    for (const auto& [name, before, now, want] : std::vector<Case>{
             {"two share", clients({timed(5000), timed(0)}), clients({timed(5500), timed(1000)}), 75.0},
             {"engines work side by side",
              {{"1", {{"copy", timed(0)}, {"video", timed(0)}}}},
              {{"1", {{"copy", timed(1000)}, {"video", timed(1500)}}}},
              75.0},
             {"one says that there are two", clients({timed(0, 2), timed(0)}),
              clients({timed(1000, 2), timed(1000)}), 50.0},
             {"began anew", clients({timed(9000), timed(0)}), clients({timed(1000), timed(500)}), 25.0},
             {"as much as can be written", clients({timed(0), timed(0)}), clients({most, most}), 100.0},
             {"a client came", clients({timed(0)}), clients({timed(1000), timed(9000)}), 50.0},
             {"cycles of clients that were looked at one after another",
              clients({counted(10, 1000), counted(0, 1000)}), clients({counted(30, 1100), counted(30, 1200)}),
              25.0},
             {"a clock that stands still", clients({counted(10, 1000)}), clients({counted(30, 1000)}), {}},
             {"a clock that began anew", clients({counted(10, 1000)}), clients({counted(30, 5)}), {}},
             {"neither time nor a clock", clients({DrmEngine{}}), clients({DrmEngine{}}), {}},
         }) {
        DrmUtilization utilization;
        EXPECT_FALSE(utilization.percent(before, kStart)) << name << ": nothing to compare with";
        EXPECT_EQ(utilization.percent(now, kStart + 2s), want) << name;
        EXPECT_FALSE(utilization.percent(clients({timed(9000)}), kStart + 2s)) << "no time has passed";
        EXPECT_EQ(utilization.percent(clients({timed(9500)}), kStart + 4s), 25.0) << "from look to look";
    }
}

}  // namespace
}  // namespace norvane
