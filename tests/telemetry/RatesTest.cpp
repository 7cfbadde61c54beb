#include <gtest/gtest.h>

#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/DiskReader.h"
#include "telemetry/MemoryReader.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr std::int64_t kMB = 1'048'576;
constexpr std::uint64_t kPagesPerGB = 262'144;  // of 4096 bytes

RegistryEntry driver(PropertyDictionary statistics) {
    return RegistryEntry({{"Statistics", std::move(statistics)}});
}

// What counts up becomes a rate over the time since the last sample, for disks and for swap alike.
class RatesTest : public testing::Test {
 protected:
    using Rates = std::pair<double, double>;

    Rates disk(ScriptedRegistry::Services drivers) {
        machine_.registry.services(RegistryService::IOBlockStorageDriver).always(std::move(drivers));
        const DiskVelocity velocity = disk_.readDiskVelocity({1});
        return {velocity.readMBps, velocity.writeMBps};
    }
    Rates disk(std::int64_t readMB, std::int64_t writtenMB) {
        return disk({{driver({{"Bytes (Read)", readMB * kMB}, {"Bytes (Write)", writtenMB * kMB}})}});
    }
    Rates swap(std::optional<VMStatistics64> statistics) {
        machine_.hostPort.statistics64.always(statistics);
        const MemoryDetail detail = memory_.readMemoryDetail({1});
        EXPECT_EQ(detail.cachedFilesGB, 0);
        return {detail.swapReadMBps, detail.swapWriteMBps};
    }
    Rates swap(std::uint64_t inMB, std::uint64_t outMB) {
        return swap(VMStatistics64{.swapins = 256 * inMB, .swapouts = 256 * outMB});
    }
    void expectBoth(int in, int out, Rates want, const char* what) {
        EXPECT_EQ(disk(in, out), want) << what;
        EXPECT_EQ(swap(static_cast<std::uint64_t>(in), static_cast<std::uint64_t>(out)), want) << what;
    }
    void later(std::chrono::nanoseconds by) { machine_.time.stepWallClock(by); }

    ScriptedMachine machine_;
    DiskReader disk_{machine_.registry, machine_.time.wallClock()};
    MemoryReader memory_{machine_.hostPort, machine_.sysctl, machine_.processInfo, machine_.time.wallClock()};
};

TEST_F(RatesTest, AreOverTheTimeSinceTheLastSampleIfThatIsUnderFiveSeconds) {
    struct Case {
        const char* name;
        std::chrono::milliseconds later;
        int in, out;
        Rates want;
    };
    expectBoth(10, 10, {0, 0}, "the first");
    for (const Case& c :
         {Case{"both directions", 2s, 11, 16, {0.5, 3}}, Case{"just under", 4'750ms, 10, 29, {0, 4}},
          Case{"five", 5s, 90, 90, {0, 0}}, Case{"no time at all", 0s, 90, 90, {0, 0}},
          Case{"the clock stepped back", -1s, 90, 90, {0, 0}},
          Case{"one counter shrank", 1s, 9, 11, {0, 1}}}) {
        disk(10, 10);
        swap(10, 10);
        later(c.later);
        expectBoth(c.in, c.out, c.want, c.name);
        later(1s);
        expectBoth(c.in + 1, c.out + 1, {1, 1}, c.name);  // the baseline moved
    }
}

TEST_F(RatesTest, AFailedReadKeepsTheBaselineAndNoDriverAtAllIsOne) {
    expectBoth(1, 1, {0, 0}, "the first");
    later(1s);
    EXPECT_EQ(disk(std::nullopt), Rates(0, 0));
    EXPECT_EQ(swap(std::nullopt), Rates(0, 0));
    later(1s);
    expectBoth(3, 1, {1, 0}, "over both seconds");
    disk(std::vector<RegistryEntry>{});
    later(1s);
    EXPECT_EQ(disk(3, 1), Rates(3, 1));
}

TEST_F(RatesTest, OfDisksAddUpWhatEachDriverTells) {
    const auto drivers = [](std::int64_t n) {
        return std::vector{driver({{"Bytes (Read)", n}, {"Bytes (Write)", n}}), RegistryEntry::unreadable(),
                           driver({{"Bytes (Read)", 2 * n}}),
                           driver({{"Bytes (Write)", 4 * n}, {"Bytes (Read)", "many"}}),
                           driver({{"Bytes (Read)", -n}, {"Bytes (Write)", true}})};
    };
    disk(drivers(kMB));
    later(1s);
    EXPECT_EQ(disk(drivers(2 * kMB)), Rates(3, 5));
}

TEST_F(RatesTest, MemoryInUseIsWiredAndAppAndCompressedInPagesOfAnySize) {
    const VMStatistics64 statistics{.wire_count = 6 * kPagesPerGB,
                                    .active_count = 3 * kPagesPerGB,
                                    .compressor_page_count = 2 * kPagesPerGB,
                                    .external_page_count = 4 * kPagesPerGB,
                                    .purgeable_count = kPagesPerGB};
    machine_.hostPort.statistics64.always(statistics);
    machine_.sysctl.swapUsage.always(XswUsage{8ULL << 30, 7ULL << 30, 1ULL << 30});
    EXPECT_EQ(memory_.readMemoryBasics({1}), (MemoryBasics{16, 11, 6, 2, 3, 1}));
    EXPECT_EQ(memory_.readMemoryDetail({1}).cachedFilesGB, 5);
    machine_.hostPort.pageSize.always(65'536);
    machine_.sysctl.swapUsage.always(std::nullopt);
    EXPECT_EQ(memory_.readMemoryBasics({2}), (MemoryBasics{16, 176, 96, 32, 48, 0}));
    EXPECT_EQ(memory_.readMemoryDetail({2}).cachedFilesGB, 80);
    machine_.hostPort.statistics64.always(std::nullopt);
    EXPECT_EQ(memory_.readMemoryBasics({3}), (MemoryBasics{16, 0, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace norvane
