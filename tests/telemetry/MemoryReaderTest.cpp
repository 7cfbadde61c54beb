#include <gtest/gtest.h>

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/MemoryReader.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t kPagesPerGB = 262'144;  // of 4096 bytes

class MemoryReaderTest : public testing::Test {
 protected:
    void count(std::uint64_t swapins, std::uint64_t swapouts) {
        machine_.hostPort.statistics64.always(VMStatistics64{.swapins = swapins, .swapouts = swapouts});
    }

    ScriptedMachine machine_;
    MemoryReader reader_{machine_.hostPort, machine_.sysctl, machine_.processInfo, machine_.time.wallClock()};
};

TEST_F(MemoryReaderTest, UsedIsWiredAndAppAndCompressed) {
    machine_.hostPort.statistics64.always(VMStatistics64{.wire_count = 6 * kPagesPerGB,
                                                         .active_count = 3 * kPagesPerGB,
                                                         .compressor_page_count = 2 * kPagesPerGB,
                                                         .external_page_count = 4 * kPagesPerGB});
    machine_.sysctl.swapUsage.always(
        XswUsage{.xsu_total = 8ULL << 30, .xsu_avail = 7ULL << 30, .xsu_used = 1ULL << 30});
    EXPECT_EQ(reader_.readMemoryBasics({1}), (MemoryBasics{16, 11, 6, 2, 3, 1}));
    machine_.sysctl.swapUsage.always(std::nullopt);
    EXPECT_EQ(reader_.readMemoryBasics({2}), (MemoryBasics{16, 11, 6, 2, 3, 0}));
    const auto asked = machine_.sysctl.swapUsage.asked();
    machine_.hostPort.statistics64.always(std::nullopt);
    EXPECT_EQ(reader_.readMemoryBasics({3}), (MemoryBasics{16, 0, 0, 0, 0, 0}));
    EXPECT_EQ(machine_.sysctl.swapUsage.asked(), asked) << "nothing else is read then";
    EXPECT_EQ(machine_.hostPort.swapCountersAsked, 0U);
}

TEST_F(MemoryReaderTest, PageSizeScalesEverything) {
    machine_.hostPort.pageSize.always(65'536);
    machine_.hostPort.statistics64.always(
        VMStatistics64{.wire_count = 16'384, .external_page_count = 8'192, .purgeable_count = 8'192});
    EXPECT_EQ(reader_.readMemoryBasics({1}).wired, 1);
    EXPECT_EQ(reader_.readMemoryDetail({1}).cachedFilesGB, 1);
}

TEST_F(MemoryReaderTest, PressureIsTheKernelsWordAndOneWithoutIt) {
    EXPECT_EQ(reader_.readMemoryPressure({1}), 1);
    machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(4);
    EXPECT_EQ(reader_.readMemoryPressure({2}), 4);
    machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(std::nullopt);
    EXPECT_EQ(reader_.readMemoryPressure({3}), 1);
}

TEST_F(MemoryReaderTest, RatesAreOverTheTimeSinceTheLastDetailIfThatIsUnderFiveSeconds) {
    struct Case {
        const char* name;
        std::chrono::milliseconds later;
        std::uint64_t ins, outs;
        double wantRead, wantWrite;
    };
    for (const Case& c :
         {Case{"two seconds", 2s, 1'000 + 512, 500 + 1'024, 1, 2},
          Case{"just under five", 4'750ms, 1'000 + 4'864, 500, 4, 0}, Case{"five", 5s, 9'000, 9'000, 0, 0},
          Case{"no time at all", 0s, 9'000, 9'000, 0, 0},
          Case{"the clock stepped back", -10s, 9'000, 9'000, 0, 0},
          Case{"a counter went back", 1s, 900, 500 + 256, 0, 1}}) {
        MemoryReader reader(machine_.hostPort, machine_.sysctl, machine_.processInfo,
                            machine_.time.wallClock());
        count(1'000, 500);
        EXPECT_EQ(reader.readMemoryDetail({1}), MemoryDetail{})
            << c.name << ": the first has nothing to compare";
        machine_.time.stepWallClock(c.later);
        count(c.ins, c.outs);
        const MemoryDetail second = reader.readMemoryDetail({2});
        EXPECT_DOUBLE_EQ(second.swapReadMBps, c.wantRead) << c.name;
        EXPECT_DOUBLE_EQ(second.swapWriteMBps, c.wantWrite) << c.name;
        machine_.time.stepWallClock(1s);
        count(c.ins + 256, c.outs + 256);
        EXPECT_DOUBLE_EQ(reader.readMemoryDetail({3}).swapReadMBps, 1) << c.name << ": the baseline moved";
    }
}

TEST_F(MemoryReaderTest, AFailedDetailKeepsTheBaseline) {
    count(0, 0);
    reader_.readMemoryDetail({1});
    machine_.time.stepWallClock(1s);
    machine_.hostPort.statistics64.always(std::nullopt);
    EXPECT_EQ(reader_.readMemoryDetail({2}), MemoryDetail{});
    machine_.time.stepWallClock(1s);
    count(512, 0);
    EXPECT_DOUBLE_EQ(reader_.readMemoryDetail({3}).swapReadMBps, 1) << "two megabytes over two seconds";
}

}  // namespace
}  // namespace norvane
