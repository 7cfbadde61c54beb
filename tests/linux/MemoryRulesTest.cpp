#include <gtest/gtest.h>

#include "platform/linux/MemoryFigures.h"
#include "platform/linux/MemoryPressureLevel.h"
#include "platform/linux/SwapTraffic.h"

namespace norvane {
namespace {

TEST(MemoryFigures, DivideWhatIsUsedWithoutRest) {
    const auto with = [](std::optional<std::uint64_t> MemInfo::*line, std::optional<std::uint64_t> value) {
        MemInfo info;
        info.memTotal = 1000;
        info.memAvailable = 400;
        info.memFree = 100;
        info.buffers = 50;
        info.cached = 350;
        info.shmem = 40;
        info.anonPages = 300;
        info.sReclaimable = 20;
        info.*line = value;
        return info;
    };
    const MemInfo ordinary = with(&MemInfo::memTotal, 1000);
    const auto expect = [](const char* name, const MemInfo& info, const std::optional<ArcStats>& arc,
                           std::uint64_t zram, const std::vector<std::uint64_t>& want) {
        const MemoryFigures found = memoryFigures(info, arc, zram).value_or(MemoryFigures());
        EXPECT_EQ((std::vector{found.used(), found.compressed, found.programs, found.wired}), want) << name;
    };
    // Used; compressed, programs, wired.
    expect("no estimate by the kernel", with(&MemInfo::memAvailable, {}), {}, 0, {520, 0, 340, 180});
    expect("the kernel's estimate is 0", with(&MemInfo::memAvailable, 0), {}, 0, {1000, 0, 340, 660});
    expect("more available than there is", with(&MemInfo::memAvailable, 1001), {}, 0, {0, 0, 0, 0});
    expect("zswap and zram", with(&MemInfo::zswap, 30), {}, 70, {600, 100, 340, 160});
    expect("more compressed than used", ordinary, {}, 5000, {600, 600, 0, 0});
    expect("programs above the rest", with(&MemInfo::anonPages, 590), {}, 70, {600, 70, 530, 0});
    expect("the cache of ZFS", ordinary, ArcStats{300, 100}, 0, {400, 0, 340, 60});
    expect("a small cache of ZFS is in use", ordinary, ArcStats{90, 100}, 0, {600, 0, 340, 260});
    expect("a cache of ZFS beyond all bounds", ordinary, ArcStats{~0ull, 0}, 0, {0, 0, 0, 0});
    expect("shared memory above the cache", with(&MemInfo::shmem, 900), {}, 0, {600, 0, 600, 0});
    EXPECT_EQ(memoryFigures(with(&MemInfo::kReclaimable, 33), {}, 0)->purgeable, 33u) << "the wider count";
    EXPECT_FALSE(memoryFigures(with(&MemInfo::memTotal, {}), {}, 0));
    EXPECT_FALSE(memoryFigures(with(&MemInfo::memTotal, 0), {}, 0));
}

TEST(MemoryPressureLevel, ChangesAtEachThreshold) {
    constexpr std::uint64_t kMiB = 1024 * 1024;
    constexpr std::uint64_t kSmall = 1000 * kMiB;       // shares decide
    constexpr std::uint64_t kLarge = 64 * 1024 * kMiB;  // caps decide
    const auto level = [](std::uint64_t total, std::uint64_t available, std::uint64_t swapTotal = 0,
                          std::uint64_t swapFree = 0, std::optional<Pressure> pressure = {}) {
        MemoryFigures memory;
        memory.total = total;
        memory.available = available;
        memory.swapTotal = swapTotal;
        memory.swapFree = swapFree;
        return memoryPressureLevel(memory, pressure);
    };
    EXPECT_EQ(level(kSmall, 100 * kMiB + 1), 1);
    EXPECT_EQ(level(kSmall, 100 * kMiB), 2) << "10 %";
    EXPECT_EQ(level(kSmall, 40 * kMiB + 1), 2);
    EXPECT_EQ(level(kSmall, 40 * kMiB), 4) << "4 %";
    EXPECT_EQ(level(kLarge, 1536 * kMiB + 1), 1);
    EXPECT_EQ(level(kLarge, 1536 * kMiB), 2);
    EXPECT_EQ(level(kLarge, 400 * kMiB + 1), 2);
    EXPECT_EQ(level(kLarge, 400 * kMiB), 4);
    EXPECT_EQ(level(kSmall, 0, 1000, 101), 1) << "free swap relieves";
    EXPECT_EQ(level(kSmall, 40 * kMiB, 1000, 100), 4) << "10 % of it does not";
    EXPECT_EQ(level(kSmall, 500 * kMiB, 1000, 1000, Pressure{999, 0}), 1);
    EXPECT_EQ(level(kSmall, 500 * kMiB, 1000, 1000, Pressure{1999, 1999}), 2) << "stalls of some";
    EXPECT_EQ(level(kSmall, 500 * kMiB, 1000, 1000, Pressure{2000, 2000}), 4) << "stalls of all";
    EXPECT_EQ(level(kSmall, 500 * kMiB + 1, 0, 0, Pressure{9000, 9000}), 1) << "one group at its own limit";
}

TEST(SwapTraffic, LeavesOutWhatWentToZram) {
    using Counters = std::pair<std::uint64_t, std::uint64_t>;
    SwapTraffic traffic(4096);
    const auto expect = [&](const char* name, const VmStat& stat,
                            const std::vector<SwapTraffic::Device>& devices, const Counters& want) {
        traffic.feed(stat, devices);
        EXPECT_EQ(Counters(traffic.swapins(), traffic.swapouts()), want) << name;
    };
    expect("the sums start with the kernel's", {100, 1000}, {{0, {800, 8000}}}, {100, 1000});
    expect("8 sectors are a page", {110, 1005}, {{0, {832, 8000}}}, {106, 1005});
    expect("a reset device moved nothing", {120, 1015}, {{0, {0, 0}}}, {116, 1015});
    expect("more than swap is no step back", {121, 1016}, {{0, {400, 400}}}, {116, 1015});
    expect("a new device", {131, 1026}, {{0, {400, 400}}, {1, {80000, 80000}}}, {126, 1025});
    expect("they add up", {141, 1036}, {{0, {408, 400}}, {1, {80000, 80016}}}, {135, 1033});
    expect("counters that restart moved nothing", {1, 2}, {}, {135, 1033});
    expect("and go on", {4, 4}, {}, {138, 1035});
    traffic = SwapTraffic(65536);
    expect("another machine", {0, 0}, {{0, {0, 0}}}, {0, 0});
    expect("in its own pages", {10, 10}, {{0, {128 * 4, 128 * 10}}}, {6, 0});
}

}  // namespace
}  // namespace norvane
