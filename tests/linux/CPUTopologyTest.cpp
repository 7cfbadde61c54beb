#include "platform/linux/CPUTopology.h"

#include <gtest/gtest.h>

#include <numeric>

#include "Fixture.h"
#include "HybridLaptop.h"
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
    addHybridProcessors(machine);
    const CPUTopology topology = readCPUTopology(machine.root(), upTo(32));
    Numbers want(16);
    std::iota(want.begin(), want.end(), 16u);
    for (unsigned n = 0; n < 16; ++n)
        want.push_back(n);
    EXPECT_EQ(topology.order, want);
    EXPECT_EQ(topology.levels, (CPUTopology::Levels{Level{8, 16}, Level{16, 16}}));
}

TEST(CPUTopology, CountsOnlyProcessorsThatAreOnline) {
    TemporaryFolder machine;
    addHybridProcessors(machine);
    const CPUTopology topology = readCPUTopology(machine.root(), {0, 2, 3, 16, 17, 40});
    EXPECT_EQ(topology.order, (Numbers{16, 17, 0, 2, 3, 40}));
    EXPECT_EQ(topology.levels->efficiency, (Level{2, 2}));
    EXPECT_EQ(topology.levels->performance, (Level{3, 4})) << "one of unknown place counts as a core";
}

TEST(CPUTopology, CountsLowPowerCoresAmongTheEfficientOnes) {
    TemporaryFolder machine;
    machine.write("/sys/devices/cpu_core/cpus", "0-1\n");
    machine.write("/sys/devices/cpu_atom/cpus", "2\n");
    machine.write("/sys/devices/cpu_lowpower/cpus", "3\n");
    EXPECT_EQ(readCPUTopology(machine.root(), upTo(4)).order, (Numbers{2, 3, 0, 1}));
}

TEST(CPUTopology, FindsTheUnitsOnTheEventBusToo) {
    TemporaryFolder machine;
    machine.write("/sys/bus/event_source/devices/cpu_core/cpus", "0\n");
    machine.write("/sys/bus/event_source/devices/cpu_atom/cpus", "1\n");
    EXPECT_EQ(readCPUTopology(machine.root(), upTo(2)).order, (Numbers{1, 0}));
}

TEST(CPUTopology, IsUniformWhereOneKindIsMissing) {
    for (const char* atoms : {"\n", "8-15\n", "garbage", ""}) {
        TemporaryFolder machine;
        addHybridProcessors(machine);
        machine.write("/sys/devices/cpu_atom/cpus", atoms);
        const CPUTopology topology = readCPUTopology(machine.root(), {0, 1, 2, 3});
        EXPECT_EQ(topology.order, upTo(4)) << atoms;
        EXPECT_FALSE(topology.levels) << atoms;
    }
}

TEST(CPUTopology, DividesByCapacityOrElseByFrequency) {
    struct Case {
        const char* name;
        std::vector<int> capacities, frequencies;
        std::size_t efficient;
    };
    for (const Case& c : {
             Case{"small and big", {446, 446, 1024, 1024}, {}, 2},
             Case{"small, big and prime", {325, 871, 871, 1024}, {}, 1},
             Case{"exactly 75 %", {768, 1024}, {}, 1},
             Case{"just above 75 %", {769, 1024}, {}, 0},
             Case{"all the same", {1024, 1024}, {4500000, 4500000}, 0},
             Case{"the same capacity, other frequencies", {1024, 1024}, {3000000, 4500000}, 1},
             Case{"favoured cores", {}, {5500000, 5600000, 5850000}, 0},
             Case{"exactly 80 %", {}, {4000000, 5000000}, 1},
             Case{"just above 80 %", {}, {4000001, 5000000}, 0},
             Case{"no capacity for one of them", {446}, {3000000, 5000000}, 1},
             Case{"a capacity of 0", {0, 1024}, {}, 0},
             Case{"nothing known", {}, {}, 0},
         }) {
        TemporaryFolder machine;
        writeFigures(machine, "cpu_capacity", c.capacities);
        writeFigures(machine, "cpufreq/cpuinfo_max_freq", c.frequencies);
        const auto count = static_cast<unsigned>(std::max({c.capacities.size(), c.frequencies.size(), 2ul}));
        const CPUTopology topology = readCPUTopology(machine.root(), upTo(count));
        const auto efficient = topology.levels ? topology.levels->efficiency.logical : 0;
        EXPECT_EQ(efficient, static_cast<std::int64_t>(c.efficient)) << c.name;
        EXPECT_EQ(topology.order.size(), count) << c.name;
    }
}

TEST(CPUTopology, ReadsAThreeTierBoardWhoseCoreNumbersRepeat) {
    const CPUTopology topology = readCPUTopology(RootFolder(fixture("arm-board-three-tiers")), upTo(8));
    EXPECT_EQ(topology.order, upTo(8));
    EXPECT_EQ(topology.levels, (CPUTopology::Levels{Level{4, 4}, Level{4, 4}}));
}

}  // namespace
}  // namespace norvane
