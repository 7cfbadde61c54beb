#include <gtest/gtest.h>

#include "platform/linux/MemoryFigures.h"
#include "platform/linux/MemoryPressureLevel.h"
#include "platform/linux/SwapTraffic.h"

namespace norvane {
namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;

MemInfo ordinary() {
    MemInfo info;
    info.memTotal = 1000;
    info.memAvailable = 400;
    info.memFree = 100;
    info.buffers = 50;
    info.cached = 350;
    info.shmem = 40;
    info.anonPages = 300;
    info.sReclaimable = 20;
    return info;
}

TEST(MemoryFigures, DivideWhatIsUsedWithoutRest) {
    const auto figures = memoryFigures(ordinary(), {}, 0);
    ASSERT_TRUE(figures);
    EXPECT_EQ(figures->used(), 600u);
    EXPECT_EQ(figures->compressed, 0u);
    EXPECT_EQ(figures->programs, 340u);
    EXPECT_EQ(figures->wired, 260u);
    EXPECT_EQ(figures->fileCache, 360u);
    EXPECT_EQ(figures->purgeable, 20u);
}

TEST(MemoryFigures, BearOddMachines) {
    struct Case {
        const char* name;
        void (*change)(MemInfo&);
        std::optional<ArcStats> arc;
        std::uint64_t zram;
        std::uint64_t used, compressed, programs, wired;
    };
    for (const Case& c : {
             Case{"no estimate by the kernel",
                  [](MemInfo& i) { i.memAvailable.reset(); },
                  {},
                  0,
                  520,
                  0,
                  340,
                  180},
             Case{"the kernel's estimate is 0",
                  [](MemInfo& i) { i.memAvailable = 0; },
                  {},
                  0,
                  1000,
                  0,
                  340,
                  660},
             Case{"more available than there is",
                  [](MemInfo& i) { i.memAvailable = 1001; },
                  {},
                  0,
                  0,
                  0,
                  0,
                  0},
             Case{"zram", [](MemInfo&) {}, {}, 70, 600, 70, 340, 190},
             Case{"zswap and zram", [](MemInfo& i) { i.zswap = 30; }, {}, 70, 600, 100, 340, 160},
             Case{"more compressed than used", [](MemInfo&) {}, {}, 5000, 600, 600, 0, 0},
             Case{"programs above the rest", [](MemInfo& i) { i.anonPages = 590; }, {}, 70, 600, 70, 530, 0},
             Case{"the cache of ZFS", [](MemInfo&) {}, ArcStats{300, 100}, 0, 400, 0, 340, 60},
             Case{"a small cache of ZFS is in use", [](MemInfo&) {}, ArcStats{90, 100}, 0, 600, 0, 340, 260},
             Case{"a cache of ZFS beyond all bounds", [](MemInfo&) {}, ArcStats{~0ull, 0}, 0, 0, 0, 0, 0},
             Case{"shared memory above the cache", [](MemInfo& i) { i.shmem = 900; }, {}, 0, 600, 0, 600, 0},
             Case{"a pool of huge pages", [](MemInfo& i) { i.memAvailable = 200; }, {}, 0, 800, 0, 340, 460},
         }) {
        MemInfo info = ordinary();
        c.change(info);
        const auto figures = memoryFigures(info, c.arc, c.zram);
        ASSERT_TRUE(figures) << c.name;
        EXPECT_EQ(figures->used(), c.used) << c.name;
        EXPECT_EQ(figures->compressed, c.compressed) << c.name;
        EXPECT_EQ(figures->programs, c.programs) << c.name;
        EXPECT_EQ(figures->wired, c.wired) << c.name;
    }
}

TEST(MemoryFigures, PreferTheWiderCountOfReclaimableCaches) {
    MemInfo info = ordinary();
    info.kReclaimable = 33;
    EXPECT_EQ(memoryFigures(info, {}, 0)->purgeable, 33u);
}

TEST(MemoryFigures, NeedATotal) {
    MemInfo info = ordinary();
    info.memTotal.reset();
    EXPECT_FALSE(memoryFigures(info, {}, 0));
    info.memTotal = 0;
    EXPECT_FALSE(memoryFigures(info, {}, 0));
}

TEST(MemoryPressureLevel, ChangesAtEachThreshold) {
    struct Case {
        const char* name;
        std::uint64_t total, available, swapTotal, swapFree;
        std::optional<Pressure> pressure;
        int want;
    };
    constexpr std::uint64_t kSmall = 1000 * kMiB;       // shares decide
    constexpr std::uint64_t kLarge = 64 * 1024 * kMiB;  // caps decide
    constexpr Pressure kCalm{};
    for (const Case& c : {
             Case{"plenty", kSmall, 800 * kMiB, 0, 0, kCalm, 1},
             Case{"just above 10 %", kSmall, 100 * kMiB + 1, 0, 0, kCalm, 1},
             Case{"10 %", kSmall, 100 * kMiB, 0, 0, kCalm, 2},
             Case{"just above 4 %", kSmall, 40 * kMiB + 1, 0, 0, kCalm, 2},
             Case{"4 %", kSmall, 40 * kMiB, 0, 0, kCalm, 4},
             Case{"nothing", kSmall, 0, 0, 0, kCalm, 4},
             Case{"just above the warning cap", kLarge, 1536 * kMiB + 1, 0, 0, kCalm, 1},
             Case{"the warning cap", kLarge, 1536 * kMiB, 0, 0, kCalm, 2},
             Case{"just above the critical cap", kLarge, 400 * kMiB + 1, 0, 0, kCalm, 2},
             Case{"the critical cap", kLarge, 400 * kMiB, 0, 0, kCalm, 4},
             Case{"free swap relieves", kSmall, 0, 1000, 101, kCalm, 1},
             Case{"10 % of free swap does not", kSmall, 40 * kMiB, 1000, 100, kCalm, 4},
             Case{"stalls of some just below 10 %", kSmall, 500 * kMiB, 1000, 1000, Pressure{999, 0}, 1},
             Case{"stalls of some", kSmall, 500 * kMiB, 1000, 1000, Pressure{1000, 0}, 2},
             Case{"stalls of all just below 20 %", kSmall, 500 * kMiB, 1000, 1000, Pressure{1999, 1999}, 2},
             Case{"stalls of all", kSmall, 500 * kMiB, 1000, 1000, Pressure{2000, 2000}, 4},
             Case{"stalls with more than half available", kSmall, 500 * kMiB + 1, 0, 0, Pressure{9000, 9000},
                  1},
             Case{"one control group at its limit", kSmall, 900 * kMiB, 0, 0, Pressure{6000, 6000}, 1},
             Case{"no pressure information, plenty", kSmall, 500 * kMiB, 0, 0, {}, 1},
             Case{"no pressure information, little", kSmall, 100 * kMiB, 0, 0, {}, 2},
             Case{"no pressure information, hardly any", kSmall, 40 * kMiB, 0, 0, {}, 4},
         }) {
        MemoryFigures memory;
        memory.total = c.total;
        memory.available = c.available;
        memory.swapTotal = c.swapTotal;
        memory.swapFree = c.swapFree;
        EXPECT_EQ(memoryPressureLevel(memory, c.pressure), c.want) << c.name;
    }
}

TEST(SwapTraffic, LeavesOutWhatWentToZram) {
    using Devices = std::vector<SwapTraffic::Device>;
    SwapTraffic traffic(4096);
    const auto expect = [&](const char* what, std::uint64_t in, std::uint64_t out) {
        EXPECT_EQ(traffic.swapins(), in) << what;
        EXPECT_EQ(traffic.swapouts(), out) << what;
    };
    traffic.feed({100, 1000}, Devices{{0, {800, 8000}}});
    expect("the sums start with the kernel's", 100, 1000);
    traffic.feed({110, 1005}, Devices{{0, {800 + 8 * 4, 8000}}});
    expect("8 sectors are a page", 106, 1005);
    traffic.feed({120, 1015}, Devices{{0, {0, 0}}});
    expect("a reset device moved nothing", 116, 1015);
    traffic.feed({121, 1016}, Devices{{0, {8 * 50, 8 * 50}}});
    expect("more zram than swap is no step back", 116, 1015);
    traffic.feed({131, 1026}, Devices{{0, {8 * 50, 8 * 50}}, {1, {80000, 80000}}});
    expect("a new device takes nothing off", 126, 1025);
    traffic.feed({141, 1036}, Devices{{0, {8 * 51, 8 * 50}}, {1, {80000, 80016}}});
    expect("devices add up", 135, 1033);
    traffic.feed({1, 2}, Devices{});
    expect("counters that restart moved nothing", 135, 1033);
    traffic.feed({4, 4}, Devices{});
    expect("and go on", 138, 1035);
}

TEST(SwapTraffic, CountsInPagesOfTheMachine) {
    SwapTraffic traffic(65536);
    traffic.feed({0, 0}, {{0, {0, 0}}});
    traffic.feed({10, 10}, {{0, {128 * 4, 128 * 10}}});
    EXPECT_EQ(traffic.swapins(), 6u);
    EXPECT_EQ(traffic.swapouts(), 0u);
}

}  // namespace
}  // namespace norvane
