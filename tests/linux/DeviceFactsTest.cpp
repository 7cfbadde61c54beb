#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "Fixture.h"
#include "platform/linux/BrandString.h"
#include "platform/linux/CPUTopology.h"
#include "platform/linux/DeviceModel.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using Text = std::optional<std::string>;
using Numbers = std::vector<unsigned>;

TEST(BrandString, IsWhatEachArchitectureCallsItOrElseTheBoard) {
    const auto arm = [](const std::string& part) {
        return "CPU implementer : 0x41\nCPU part : " + part + "\n\n";
    };
    TemporaryFolder machine;
    for (const auto& [cpuInfo, want] : std::vector<std::pair<std::string, Text>>{
             {"family\t: 6\nmodel name\t: A(R)  B   CPU @ 2.60GHz\nmodel name : B\n", "A(R) B CPU @ 2.60GHz"},
             {"system type : x\ncpu model : Cavium Octeon III V0.2\n", "Cavium Octeon III V0.2"},
             {"isa : rv64imafdc\nuarch : sifive,u74-mc\n", "sifive,u74-mc"},
             {arm("0xd05") + arm("0xfff") + arm("0xd0b") + arm("0xd05"), "Cortex-A76 + Cortex-A55"},
             {"model name : ARMv7 rev 4 (v7l)\n" + arm("0xc07") + "Hardware : BCM2835\n", "Cortex-A7"},
             {"\xff\xfe:\n:::\nCPU part : 0xd05\nCPU implementer : \nmodel name", {}}}) {
        machine.write("/proc/cpuinfo", cpuInfo);
        EXPECT_EQ(readBrandString(machine.root()), want) << cpuInfo;
    }
    machine.write("/sys/class/dmi/id/product_name", "Some  Model\n");
    EXPECT_EQ(readBrandString(machine.root()), "Some Model");
    machine.write("/proc/device-tree/model", std::string_view("A Board\0rest", 12));
    EXPECT_EQ(readBrandString(machine.root()), "A Board");
    machine.write("/sys/devices/soc0/machine", "A Chip\n");
    EXPECT_EQ(readBrandString(machine.root()), "A Chip");
}

TEST(DeviceModel, FollowsFromWhatTheFirmwareSays) {
    struct Case {
        DeviceFacts facts;  // vendor, product, chassis, power profile, device tree
        bool hasBattery;
        Text want;
    };
    for (const auto& [facts, hasBattery, want] : std::vector<Case>{
             {{"Apple Inc.", "MacBookPro11,1", 9, 2, ""}, true, "MacBookPro11,1"},
             {{"An Apple a Day", "MacBookPro11,1", 3, 1, ""}, false, "iMac"},
             {{"", "", {}, {}, "Apple MacBook Pro (14-inch, 2021)"}, true, "AppleMacBookPro(14-inch,2021)"},
             {{"", "", 10, 1, ""}, false, "MacBook"},  // a laptop without its battery
             {{"", "", 3, 2, ""}, true, "iMac"},       // a battery in a desktop
             {{"", "", 17, {}, ""}, true, "MacBook"},  // a tablet that says server
             {{"", "", 17, 4, ""}, false, {}},
             {{"", "", 35, 1, ""}, false, "Macmini"},
             {{"", "", 28, {}, ""}, true, {}},  // a blade
             {{"", "", ~std::uint64_t{0}, 2, ""}, true, {}},
             {{"", "", {}, {}, "Example Board Rev 1.2"}, false, "Macmini"},
             {{"", "", {}, {}, "Example Book"}, true, "MacBook"}}) {
        EXPECT_EQ(deviceModel(facts, [has = hasBattery] { return has; }), want)
            << facts.vendor << ' ' << facts.chassisType.value_or(0) << ' ' << facts.deviceTreeModel;
    }
    const TemporaryFolder machine;
    const auto model = [&] { return readDeviceModel(machine.root(), [] { return false; }); };
    machine.write("/sys/class/dmi/id/chassis_type", "three\n");
    machine.write("/proc/device-tree/model", std::string("\0", 1));
    EXPECT_EQ(model(), Text());
    machine.write("/sys/firmware/acpi/pm_profile", "2\n");
    EXPECT_EQ(model(), "MacBook");
}

Numbers upTo(unsigned count) {
    Numbers numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0u);
    return numbers;
}

TEST(CPUTopology, PutsTheEfficiencyCoresOfAHybridFirst) {
    TemporaryFolder machine;
    machine.copyFrom(fixture("hybrid-laptop"));
    const CPUTopology online = readCPUTopology(machine.root(), {0, 2, 3, 16, 17, 40});
    EXPECT_EQ(online.order, (Numbers{16, 17, 0, 2, 3, 40}));
    EXPECT_EQ(online.levels->efficiency, (CPUTopology::Level{2, 2}));
    EXPECT_EQ(online.levels->performance, (CPUTopology::Level{3, 4})) << "one of unknown place is a core";
    for (const char* atoms : {"\n", "8-15\n", "garbage", ""}) {
        machine.write("/sys/devices/cpu_atom/cpus", atoms);
        EXPECT_EQ(readCPUTopology(machine.root(), upTo(4)).order, upTo(4)) << atoms;
    }
    machine.remove("/sys");
    machine.write("/sys/bus/event_source/devices/cpu_core/cpus", "0-1\n");
    machine.write("/sys/bus/event_source/devices/cpu_atom/cpus", "2\n");
    machine.write("/sys/devices/cpu_lowpower/cpus", "3\n");
    EXPECT_EQ(readCPUTopology(machine.root(), upTo(4)).order, (Numbers{2, 3, 0, 1}));
    const CPUTopology tiers = readCPUTopology(RootFolder(fixture("arm-board-three-tiers")), upTo(8));
    EXPECT_EQ(tiers.levels->performance, (CPUTopology::Level{4, 4})) << "core numbers repeat";
}

TEST(CPUTopology, DividesByCapacityOrElseByFrequency) {
    using Figures = std::vector<int>;
    struct Case {
        Figures capacities;
        Figures frequencies;
        int efficient;
    };
    for (const auto& [capacities, frequencies, efficient] :
         std::vector<Case>{{{325, 871, 871, 1024}, {}, 1},
                           {{768, 1024}, {}, 1},  // 75 %
                           {{769, 1024}, {}, 0},
                           {{1024, 1024}, {3000000, 4500000}, 1},
                           {{}, {4000000, 5000000}, 1},  // 80 %
                           {{}, {4000001, 5000000}, 0},
                           {{446}, {3000000, 5000000}, 1},  // no capacity for one of them
                           {{0, 1024}, {}, 0}}) {
        TemporaryFolder machine;
        const auto write = [&](const Figures& figures, const std::string& file) {
            for (std::size_t n = 0; n < figures.size(); ++n)
                machine.write("/sys/devices/system/cpu/cpu" + std::to_string(n) + file,
                              std::to_string(figures[n]) + "\n");
        };
        write(capacities, "/cpu_capacity");
        write(frequencies, "/cpufreq/cpuinfo_max_freq");
        const auto count = static_cast<unsigned>(std::max(capacities.size(), frequencies.size()));
        const CPUTopology topology = readCPUTopology(machine.root(), upTo(count));
        EXPECT_EQ(topology.levels ? topology.levels->efficiency.logical : 0, efficient)
            << testing::PrintToString(capacities) << testing::PrintToString(frequencies);
    }
}

}  // namespace
}  // namespace norvane
