#include <gtest/gtest.h>

#include <string>

#include "platform/linux/CPUList.h"
#include "platform/linux/ProcStat.h"

namespace norvane {
namespace {

TEST(ProcStat, ColumnsBecomeTheFourAnswers) {
    struct Case {
        const char* name;
        const char* text;
        std::optional<CPUTicks> want;  // user, system, idle, nice
    };
    for (const Case& c : {
             Case{"all columns; stolen and guest time count nowhere", "cpu  10 2 3 40 5 6 7 1000 8 1\n",
                  CPUTicks{10, 16, 45, 2}},
             Case{"an old kernel with four columns", "cpu 10 2 3 40\n", CPUTicks{10, 3, 40, 2}},
             Case{"five columns", "cpu 10 2 3 40 5\n", CPUTicks{10, 3, 45, 2}},
             Case{"garbage in stolen time", "cpu 10 2 3 40 5 6 7 18446744073709551615999 8 1\n",
                  CPUTicks{10, 16, 45, 2}},
             Case{"more columns than we know", "cpu 1 2 3 4 5 6 7 8 9 10 11 12\n", CPUTicks{1, 16, 9, 2}},
             Case{"no newline at the end", "cpu 1 2 3 4", CPUTicks{1, 3, 4, 2}},
             Case{"a line of a processor before it", "cpu0 9 9 9 9\ncpu 1 2 3 4\n", CPUTicks{1, 3, 4, 2}},
             Case{"three columns", "cpu 10 2 3\n", {}},
             Case{"cut off within the fourth", "cpu 10 2 3 4x", {}},
             Case{"a negative number", "cpu 10 -2 3 4 5\n", {}},
             Case{"no such line", "cpu0 1 2 3 4\nintr 5\n", {}},
             Case{"nothing", "", {}},
             Case{"garbage", "\xff\xfe\n\n\n cpux 1 2 3 4", {}},
         }) {
        EXPECT_EQ(parseMachineTicks(c.text), c.want) << c.name;
    }
}

TEST(ProcStat, SumsOfHugeColumnsSaturate) {
    const auto ticks = parseMachineTicks("cpu 1 2 18446744073709551615 18446744073709551615 5 6 7\n");
    ASSERT_TRUE(ticks);
    EXPECT_EQ(ticks->system, ~std::uint64_t{0});
    EXPECT_EQ(ticks->idle, ~std::uint64_t{0});
}

TEST(ProcStat, ProcessorsAreKnownByTheirNumberNotTheirLine) {
    std::vector<ProcessorTicks> processors{{99, {}}};
    parseProcessorTicks(
        "cpu  1 2 3 4\ncpu0 1 0 0 4\ncpu8 2 0 0 5\ncpu3 bad\ncpu4000000000 1 2 3 4\nintr 7\ncpu5 3 0 0 6",
        processors);
    const std::vector<ProcessorTicks> want{{0, {1, 0, 4, 0}}, {8, {2, 0, 5, 0}}, {5, {3, 0, 6, 0}}};
    EXPECT_EQ(processors, want);
}

TEST(CPUList, ReadsWhatTheKernelWritesAndRefusesTheRest) {
    using List = std::vector<unsigned>;
    EXPECT_EQ(parseCPUList("0-3,8,10-11\n"), (List{0, 1, 2, 3, 8, 10, 11}));
    EXPECT_EQ(parseCPUList("5\n"), List{5});
    EXPECT_EQ(parseCPUList("\n"), List{});
    EXPECT_EQ(parseCPUList(""), List{});
    for (const char* text :
         {"0-", "-3", "3-1", "a", "0-4000000000", "0,0,0", "0-65535,0-65535", "1,,2", "0-3:1/2"})
        EXPECT_EQ(parseCPUList(text), std::nullopt) << text;
}

}  // namespace
}  // namespace norvane
