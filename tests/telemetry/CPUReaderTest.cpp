#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "platform/scripted/ScriptedHostPort.h"
#include "platform/scripted/ScriptedSysctl.h"
#include "telemetry/CPUHardwareInfo.h"
#include "telemetry/CPUReader.h"

namespace norvane {
namespace {

constexpr std::uint32_t kTop = std::numeric_limits<std::uint32_t>::max();

class CPUReaderTest : public testing::Test {
 protected:
    double totalAfter(std::optional<HostCPULoadInfo> info) {
        host_.statistics.always(info);
        return reader_.readTotalCPUUsage({++tick_});
    }
    CoreUsageReading coresAfter(std::vector<std::int32_t> ticks, std::size_t count) {
        host_.processorInfo.always(ProcessorInfo{count, std::move(ticks)});
        return reader_.readCoreUsage({++tick_});
    }

    ScriptedTime time_;
    ScriptedHostPort host_{time_};
    ScriptedSysctl sysctl_;
    CPUReader reader_{host_, sysctl_};
    std::uint64_t tick_ = 0;
};

TEST_F(CPUReaderTest, TotalIsTheBusyShareOfWhatTheCountersMoved) {
    struct Case {
        const char* name;
        HostCPULoadInfo before, now;
        double want;
    };
    for (const Case& c : {
             Case{"half busy", {100, 0, 100, 0}, {150, 0, 150, 0}, 50},
             Case{"system and nice are busy", {0, 0, 0, 0}, {1, 1, 1, 1}, 75},
             Case{"nothing moved", {9, 9, 9, 9}, {9, 9, 9, 9}, 0},
             Case{"idle wraps", {0, 0, kTop - 9, 0}, {10, 0, 0, 0}, 50},
             Case{"user wraps", {kTop, 0, 0, 0}, {0, 0, 3, 0}, 25},
             Case{"idle steps back: the whole reading stands", {0, 0, 500, 0}, {50, 0, 499, 0}, 0},
             Case{"user steps back: not all idle", {500, 0, 0, 0}, {499, 0, 50, 0}, 0},
             Case{"a difference of 2^31 is a step back", {0, 0, 0, 0}, {1U << 31, 0, 1, 0}, 0},
             Case{"one of 2^31 - 1 is not", {0, 0, 0, 0}, {(1U << 31) - 1, 0, 0, 0}, 100},
         }) {
        CPUReader reader(host_, sysctl_);
        host_.statistics.always(c.before);
        EXPECT_EQ(reader.readTotalCPUUsage({1}), 0) << c.name << ", first read";
        host_.statistics.always(c.now);
        EXPECT_EQ(reader.readTotalCPUUsage({2}), c.want) << c.name;
    }
}

TEST_F(CPUReaderTest, AFailedTotalKeepsTheBaselineAndAStepBackMovesIt) {
    totalAfter(HostCPULoadInfo{0, 0, 0, 0});
    EXPECT_EQ(totalAfter(std::nullopt), 0);
    EXPECT_EQ(totalAfter(HostCPULoadInfo{30, 0, 10, 0}), 75) << "measured over the failed read";
    EXPECT_EQ(totalAfter(HostCPULoadInfo{20, 0, 10, 0}), 0);
    EXPECT_EQ(totalAfter(HostCPULoadInfo{21, 0, 11, 0}), 50) << "the new baseline is the stepped one";
}

TEST_F(CPUReaderTest, SplitsCoresByTheFirstEfficiencyOnes) {
    sysctl_.number(SysctlNumber::hw_perflevel1_logicalcpu).always(1);
    sysctl_.number(SysctlNumber::hw_perflevel0_logicalcpu).always(2);
    const CoreUsageReading first = coresAfter({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 3);
    EXPECT_EQ(first.efficiencyUsages, std::vector<double>{0});
    EXPECT_EQ(first.performanceUsages, (std::vector<double>{0, 0}));
    EXPECT_EQ(first.idlePercent, 0);

    const CoreUsageReading second = coresAfter({5, 0, 5, 0, 30, 0, 10, 0, 0, 0, 0, 0}, 3);
    EXPECT_EQ(second.efficiencyUsages, std::vector<double>{50});
    EXPECT_EQ(second.performanceUsages, (std::vector<double>{75, 0})) << "a core that stood reports 0";
    EXPECT_EQ(second.efficiencyUsage, 50);
    EXPECT_EQ(second.performanceUsage, 37.5) << "every core weighs the same";
    EXPECT_EQ(second.idlePercent, 30) << "15 of 50 ticks";
    EXPECT_EQ(sysctl_.number(SysctlNumber::hw_perflevel0_logicalcpu).asked(), 1U);
}

TEST_F(CPUReaderTest, WithoutPerformanceLevelsAllCoresArePerformanceCores) {
    const CoreUsageReading first = coresAfter(std::vector<std::int32_t>(16, 0), 4);
    EXPECT_EQ(first.performanceUsages.size(), 4U);
    EXPECT_TRUE(first.efficiencyUsages.empty());
    const CoreUsageReading still = coresAfter(std::vector<std::int32_t>(16, 0), 4);
    EXPECT_EQ(still.efficiencyUsage, 0);
    EXPECT_EQ(still.idlePercent, 0) << "nothing moved";
    EXPECT_EQ(reader_.coreCounts(), (CoreCounts{0, 4, 4}));
}

TEST_F(CPUReaderTest, AFailedOrEmptyCoreReadIsEmptyAndKeepsTheBaseline) {
    coresAfter({0, 0, 0, 0}, 1);
    host_.processorInfo.always(std::nullopt);
    EXPECT_EQ(reader_.readCoreUsage({90}), CoreUsageReading{});
    EXPECT_EQ(coresAfter({}, 0), CoreUsageReading{});
    EXPECT_EQ(coresAfter({10, 0, 30, 0}, 1).performanceUsage, 25);
}

TEST_F(CPUReaderTest, SurvivesAChangingOrLyingProcessorCount) {
    coresAfter({0, 0, 0, 0, 0, 0, 0, 0}, 2);
    const CoreUsageReading grown = coresAfter({10, 0, 10, 0, 10, 0, 30, 0, 99, 0, 0, 0}, 3);
    EXPECT_EQ(grown.performanceUsages, (std::vector<double>{50, 25, 0})) << "a new one has no past";
    const CoreUsageReading shrunk = coresAfter({20, 0, 20, 0}, 1);
    EXPECT_EQ(shrunk.performanceUsages, std::vector<double>{50});
    const CoreUsageReading lying = coresAfter({30, 0, 30, 0, 1, 2}, 1000);
    EXPECT_EQ(lying.performanceUsages, std::vector<double>{50}) << "the array decides, not the count";
    const CoreUsageReading wrapped = coresAfter({std::numeric_limits<std::int32_t>::min(), 0, 30, 0}, 1);
    EXPECT_EQ(wrapped.performanceUsages, std::vector<double>{100});
}

TEST_F(CPUReaderTest, CoreCountsBearGarbage) {
    sysctl_.number(SysctlNumber::hw_perflevel0_logicalcpu).always(std::numeric_limits<std::int64_t>::max());
    sysctl_.number(SysctlNumber::hw_perflevel1_logicalcpu).always(-5);
    EXPECT_EQ(reader_.coreCounts().efficiency, 0);
    EXPECT_LE(reader_.coreCounts().performance, 65'536);
}

TEST(CPUHardwareInfoTest, NamesTheChipAndCountsItsCores) {
    ScriptedSysctl sysctl;
    sysctl.number(SysctlNumber::hw_perflevel0_physicalcpu).always(8);
    sysctl.number(SysctlNumber::hw_perflevel1_physicalcpu).always(-3);
    sysctl.text(SysctlText::machdep_cpu_brand_string)
        .always(std::string("Fast \xFF"
                            "Chip\0junk",
                            15));
    const CPUHardwareInfo info(sysctl);
    EXPECT_EQ(info.performanceCores(), 8);
    EXPECT_EQ(info.efficiencyCores(), 0);
    EXPECT_EQ(info.chipName(),
              "Fast \xEF\xBF\xBD"
              "Chip");

    ScriptedSysctl silent;
    silent.text(SysctlText::machdep_cpu_brand_string).always(std::nullopt);
    EXPECT_EQ(CPUHardwareInfo(silent).chipName(), "");
    EXPECT_EQ(CPUHardwareInfo(silent).performanceCores(), 0);
}

}  // namespace
}  // namespace norvane
