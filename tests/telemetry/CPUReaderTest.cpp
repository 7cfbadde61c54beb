#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "platform/scripted/ScriptedHostPort.h"
#include "platform/scripted/ScriptedSysctl.h"
#include "telemetry/CPUReader.h"

namespace norvane {
namespace {

constexpr std::uint32_t kTop = std::numeric_limits<std::uint32_t>::max();

class CPUReaderTest : public testing::Test {
 protected:
    double totalAfter(std::optional<HostCPULoadInfo> info) {
        host_.statistics.always(info);
        return reader_.readTotalCPUUsage({1});
    }
    CoreUsageReading coresAfter(std::vector<std::int32_t> ticks, std::size_t count) {
        host_.processorInfo.always(ProcessorInfo{count, std::move(ticks)});
        return reader_.readCoreUsage({1});
    }

    ScriptedTime time_;
    ScriptedHostPort host_{time_};
    ScriptedSysctl sysctl_;
    CPUReader reader_{host_, sysctl_};
};

TEST_F(CPUReaderTest, TotalIsTheBusyShareOfWhatTheCountersMoved) {
    struct Case {
        const char* name;
        HostCPULoadInfo before, now;
        double want;
    };
    for (const Case& c :
         {Case{"system and nice are busy", {0, 0, 0, 0}, {1, 1, 1, 1}, 75},
          Case{"nothing moved", {9, 9, 9, 9}, {9, 9, 9, 9}, 0},
          Case{"idle wraps", {0, 0, kTop - 9, 0}, {10, 0, 0, 0}, 50},
          Case{"idle steps back: the whole reading stands", {0, 0, 500, 0}, {50, 0, 499, 0}, 0},
          Case{"user steps back: not all idle", {500, 0, 0, 0}, {499, 0, 50, 0}, 0},
          Case{"nice steps back", {0, 0, 0, 500}, {50, 0, 50, 499}, 0},
          Case{"a difference of 2^31 is a step back", {0, 0, 0, 0}, {1U << 31, 0, 1, 0}, 0},
          Case{"one of 2^31 - 1 is not", {0, 0, 0, 0}, {(1U << 31) - 1, 0, 0, 0}, 100}}) {
        totalAfter(c.before);
        EXPECT_EQ(totalAfter(c.now), c.want) << c.name;
    }
}

TEST_F(CPUReaderTest, AFailedTotalKeepsTheBaselineAndAStepBackMovesIt) {
    EXPECT_EQ(totalAfter(HostCPULoadInfo{5, 0, 0, 0}), 0) << "the first read";
    EXPECT_EQ(totalAfter(std::nullopt), 0);
    EXPECT_EQ(totalAfter(HostCPULoadInfo{35, 0, 10, 0}), 75) << "measured over the failed read";
    EXPECT_EQ(totalAfter(HostCPULoadInfo{20, 0, 10, 0}), 0);
    EXPECT_EQ(totalAfter(HostCPULoadInfo{21, 0, 11, 0}), 50) << "the new baseline is the stepped one";
}

TEST_F(CPUReaderTest, SplitsCoresByTheFirstEfficiencyOnesAndMeasuresOverAFailedRead) {
    sysctl_.number(SysctlNumber::hw_perflevel1_logicalcpu).always(1);
    sysctl_.number(SysctlNumber::hw_perflevel0_logicalcpu).always(2);
    EXPECT_EQ(coresAfter(std::vector<std::int32_t>(12, 0), 3), (CoreUsageReading{0, 0, {0, 0}, {0}, 0}));
    EXPECT_EQ(coresAfter({}, 0), CoreUsageReading{});
    host_.processorInfo.always(std::nullopt);
    EXPECT_EQ(reader_.readCoreUsage({1}), CoreUsageReading{});
    // Every core weighs the same, one that stood reports 0, and 15 of all 50 ticks are idle.
    EXPECT_EQ(coresAfter({5, 0, 5, 0, 30, 0, 10, 0, 0, 0, 0, 0}, 3),
              (CoreUsageReading{37.5, 50, {75, 0}, {50}, 30}));
    EXPECT_EQ(sysctl_.number(SysctlNumber::hw_perflevel0_logicalcpu).asked(), 1U);
}

TEST_F(CPUReaderTest, WithoutPerformanceLevelsSurvivesAChangingOrLyingProcessorCount) {
    EXPECT_EQ(coresAfter({0, 0, 0, 0, 0, 0, 0, 0}, 2).performanceUsages, std::vector<double>(4, 0));
    const CoreUsageReading grown = coresAfter({10, 0, 10, 0, 10, 0, 30, 0, 99, 0, 0, 0}, 3);
    EXPECT_EQ(grown.performanceUsages, (std::vector<double>{50, 25, 0})) << "a new one has no past";
    EXPECT_TRUE(grown.efficiencyUsages.empty());
    EXPECT_EQ(coresAfter({20, 0, 20, 0}, 1).performanceUsages, std::vector<double>{50});
    const CoreUsageReading lying = coresAfter({30, 0, 30, 0, 1, 2}, 1000);
    EXPECT_EQ(lying.performanceUsages, std::vector<double>{50}) << "the array decides, not the count";
    const CoreUsageReading wrapped = coresAfter({std::numeric_limits<std::int32_t>::min(), 0, 30, 0}, 1);
    EXPECT_EQ(wrapped.performanceUsages, std::vector<double>{100});
    EXPECT_EQ(reader_.coreCounts(), (CoreCounts{0, 4, 4}));
}

}  // namespace
}  // namespace norvane
