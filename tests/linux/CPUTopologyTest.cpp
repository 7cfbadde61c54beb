#include "platform/linux/CPUTopology.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "Fixture.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using Numbers = std::vector<unsigned>;
using Level = CPUTopology::Level;

Numbers upTo(unsigned count) {
    Numbers numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0u);
    return numbers;
}

// A file for each of the processors 0, 1, ….
void writeFigures(const TemporaryFolder& machine, const std::string& file, const std::vector<int>& figures) {
    for (std::size_t n = 0; n < figures.size(); ++n) {
        machine.write("/sys/devices/system/cpu/cpu" + std::to_string(n) + "/" + file,
                      std::to_string(figures[n]) + "\n");
    }
}

TEST(CPUTopology, PutsTheEfficiencyCoresOfAHybridFirst) {
    TemporaryFolder machine;
    machine.copyFrom(fixture("hybrid-laptop"));
    const CPUTopology topology = readCPUTopology(machine.root(), upTo(32));
    Numbers want = upTo(32);
    std::rotate(want.begin(), want.begin() + 16, want.end());
    EXPECT_EQ(topology.order, want);
    EXPECT_EQ(topology.levels, (CPUTopology::Levels{Level{8, 16}, Level{16, 16}}));

    const CPUTopology online = readCPUTopology(machine.root(), {0, 2, 3, 16, 17, 40});
    EXPECT_EQ(online.order, (Numbers{16, 17, 0, 2, 3, 40}));
    EXPECT_EQ(online.levels->efficiency, (Level{2, 2}));
    EXPECT_EQ(online.levels->performance, (Level{3, 4})) << "one of unknown place counts as a core";
}

TEST(CPUTopology, FindsLowPowerCoresAndUnitsOnTheEventBusToo) {
    TemporaryFolder machine;
    machine.write("/sys/bus/event_source/devices/cpu_core/cpus", "0\n");
    machine.write("/sys/bus/event_source/devices/cpu_atom/cpus", "1\n");
    EXPECT_EQ(readCPUTopology(machine.root(), upTo(2)).order, (Numbers{1, 0}));
    machine.write("/sys/devices/cpu_core/cpus", "0-1\n");
    machine.write("/sys/devices/cpu_atom/cpus", "2\n");
    machine.write("/sys/devices/cpu_lowpower/cpus", "3\n");
    EXPECT_EQ(readCPUTopology(machine.root(), upTo(4)).order, (Numbers{2, 3, 0, 1}));
}

TEST(CPUTopology, IsUniformWhereOneKindIsMissing) {
    for (const char* atoms : {"\n", "8-15\n", "garbage", ""}) {
        TemporaryFolder machine;
        machine.copyFrom(fixture("hybrid-laptop"));
        machine.write("/sys/devices/cpu_atom/cpus", atoms);
        const CPUTopology topology = readCPUTopology(machine.root(), {0, 1, 2, 3});
        EXPECT_EQ(topology.order, upTo(4)) << atoms;
        EXPECT_FALSE(topology.levels) << atoms;
    }
}

TEST(CPUTopology, DividesByCapacityOrElseByFrequency) {
    const auto expect = [](const std::vector<int>& capacities, const std::vector<int>& frequencies,
                           int efficient) {
        TemporaryFolder machine;
        writeFigures(machine, "cpu_capacity", capacities);
        writeFigures(machine, "cpufreq/cpuinfo_max_freq", frequencies);
        const auto count = static_cast<unsigned>(std::max({capacities.size(), frequencies.size(), 2ul}));
        const CPUTopology topology = readCPUTopology(machine.root(), upTo(count));
        EXPECT_EQ(topology.levels ? topology.levels->efficiency.logical : 0, efficient)
            << testing::PrintToString(capacities) << testing::PrintToString(frequencies);
        EXPECT_EQ(topology.order.size(), count);
    };
    expect({325, 871, 871, 1024}, {}, 1);
    expect({768, 1024}, {}, 1);  // 75 %
    expect({769, 1024}, {}, 0);
    expect({1024, 1024}, {3000000, 4500000}, 1);
    expect({}, {5500000, 5600000, 5850000}, 0);  // favoured cores
    expect({}, {4000000, 5000000}, 1);           // 80 %
    expect({}, {4000001, 5000000}, 0);
    expect({446}, {3000000, 5000000}, 1);  // no capacity for one of them
    expect({0, 1024}, {}, 0);
    expect({}, {}, 0);
}

TEST(CPUTopology, ReadsAThreeTierBoardWhoseCoreNumbersRepeat) {
    const CPUTopology topology = readCPUTopology(RootFolder(fixture("arm-board-three-tiers")), upTo(8));
    EXPECT_EQ(topology.order, upTo(8));
    EXPECT_EQ(topology.levels, (CPUTopology::Levels{Level{4, 4}, Level{4, 4}}));
}

}  // namespace
}  // namespace norvane
