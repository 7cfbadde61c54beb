#include "platform/linux/TickCounters.h"

#include <gtest/gtest.h>

#include <vector>

namespace norvane {
namespace {

constexpr std::uint64_t kRestartDrop = 300;

TEST(TickCounters, FollowTheKernelAndNeverStepBack) {
    struct Case {
        const char* name;
        std::vector<CPUTicks> readings;  // user, system, idle, nice
        CPUTicks want;
    };
    for (const Case& c : {
             Case{"the first reading counts from the start", {{10, 20, 30, 40}}, {10, 20, 30, 40}},
             Case{"steady growth", {{10, 20, 30, 40}, {15, 21, 130, 40}}, {15, 21, 130, 40}},
             Case{"idle falls by one tick", {{10, 20, 30, 0}, {15, 20, 29, 0}}, {15, 20, 30, 0}},
             Case{"what was taken back counts only once",
                  {{0, 0, 100, 0}, {0, 0, 95, 0}, {0, 0, 103, 0}},
                  {0, 0, 103, 0}},
             Case{"a fall of 300 is still no restart",
                  {{10, 0, 1000, 0}, {20, 0, 700, 0}, {30, 0, 1001, 0}},
                  {30, 0, 1001, 0}},
             Case{"a restart moves nothing, not even what went up",
                  {{10, 0, 1000, 0}, {20, 0, 699, 0}},
                  {10, 0, 1000, 0}},
             Case{"after a restart, it goes on from there",
                  {{10, 20, 1000, 5}, {0, 0, 3, 0}, {1, 2, 7, 0}},
                  {11, 22, 1004, 5}},
         }) {
        TickCounters counters;
        for (const CPUTicks& reading : c.readings)
            counters.feed(reading, kRestartDrop);
        EXPECT_EQ(counters.sums(), c.want) << c.name;
    }
}

}  // namespace
}  // namespace norvane
