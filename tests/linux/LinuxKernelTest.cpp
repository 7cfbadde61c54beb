#include "platform/linux/LinuxKernel.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "Fixture.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

constexpr TickToken kNone = TickToken::none();

// A machine that the test writes, behind the ports.
class LinuxKernelTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    std::optional<LinuxKernel> kernel_;

    // Made at the first use, so that a test can write files and change calls before.
    LinuxKernel& kernel() {
        if (!kernel_) kernel_.emplace(machine.root(observer), system.calls, LinuxKernel::Lanes::sameThread());
        return *kernel_;
    }
    HostPort& host() { return kernel().hostPort(); }
    std::optional<std::int64_t> number(SysctlNumber name) {
        return kernel().sysctl().sysctlbyname(name, kNone);
    }

    std::optional<VMStatistics64> pages(SwapCounters counters = SwapCounters::leave) {
        return host().host_statistics64(kNone, counters);
    }
    void writeSwaps(const std::string& lines) {
        machine.write("/proc/swaps", "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n" + lines);
    }
    // The four entries of the processor at this place.
    using Entries = std::vector<std::int32_t>;
    Entries entries(std::size_t place) {
        const auto info = host().host_processor_info(kNone);
        if (!info || info->ticks.size() < 4 * (place + 1)) return {};
        const auto begin = info->ticks.begin() + static_cast<std::ptrdiff_t>(4 * place);
        return {begin, begin + 4};
    }
};

TEST_F(LinuxKernelTest, WhatIsMissingOrDamagedFailsForOneReadingOnlyWhereNothingElseTells) {
    EXPECT_EQ(kernel().processInfo().physicalMemory(kNone), std::uint64_t{3} << 30) << "the system call's";
    for (const auto& [text, seconds] : {std::pair("350735.47 2\n", 350735.47), std::pair("soon\n", 1234.5)}) {
        machine.write("/proc/uptime", text);
        EXPECT_EQ(kernel().processInfo().systemUptime(), seconds) << text;
    }
    for (const auto& [text, isMachine, areProcessors] :
         {std::tuple("cpu 1 2 3\ncpu0 1 2 3 4\n", false, false),
          std::tuple("cpu 1 2 3 4\nintr 5\n", true, false),
          std::tuple("cpu 1 2 3 4\ncpu0 1 2 3 4\n", true, true), std::tuple("", false, false)}) {
        machine.write("/proc/stat", text);
        EXPECT_EQ(host().host_statistics(kNone).has_value(), isMachine) << text;
        EXPECT_EQ(host().host_processor_info(kNone).has_value(), areProcessors) << text;
    }
    for (const auto& [text, bytes] : {std::pair("1000", 1024000u), std::pair("2000", 2048000u),
                                      std::pair("x", 2048000u), std::pair("0", 2048000u)}) {
        machine.write("/proc/meminfo", std::string("MemTotal: ") + text + " kB");
        EXPECT_EQ(kernel().processInfo().physicalMemory(kNone), bytes) << text;
    }
    EXPECT_FALSE(pages());
}

TEST_F(LinuxKernelTest, MachineTicksBearACounterThatStepsBackAndWrapAt32Bits) {
    const auto after = [&](const std::string& columns) {
        machine.write("/proc/stat", "cpu " + columns + "\ncpu0 1 1 1 1\n");
        return host().host_statistics(kNone).value_or(HostCPULoadInfo());
    };
    EXPECT_EQ(after("100 5 20 4294967290 0 0 0 9 50 5"), (HostCPULoadInfo{100, 20, 4294967290u, 5}));
    EXPECT_EQ(after("130 5 21 4294967289 0 1 2 99 80 5"), (HostCPULoadInfo{130, 24, 4294967290u, 5}));
    EXPECT_EQ(after("130 5 21 4294967295 3 1 2 99 80 5"), (HostCPULoadInfo{130, 24, 2, 5}));

    kernel_.reset();
    system.calls.ticksPerSecond = 1000;
    after("0 0 0 5000");
    EXPECT_EQ(after("10 0 0 2000").user, 10u) << "3 s back, whatever the unit: no restart";
    EXPECT_EQ(after("20 0 0 1999").user, 10u) << "more: a restart, and nothing moves";
    EXPECT_EQ(after("21 0 0 2001"), (HostCPULoadInfo{11, 0, 5002, 0})) << "from there on it goes on";
}

TEST_F(LinuxKernelTest, AProcessorThatGoesOfflineKeepsItsTicksAndItsPlace) {
    machine.write("/proc/stat", "cpu 9 9 9 9\ncpu0 1 0 0 10\ncpu2 2 0 0 20\ncpu5 3 0 0 30\n");
    EXPECT_EQ(host().host_processor_info(kNone)->processorCount, 3u);
    machine.write("/proc/stat", "cpu 9 9 9 9\ncpu0 5 0 0 10\ncpu3 7 7 7 7\ncpu5 4 0 0 31\n");
    EXPECT_EQ(entries(0), (Entries{5, 0, 10, 0}));
    EXPECT_EQ(entries(1), (Entries{2, 0, 20, 0})) << "offline";
    EXPECT_EQ(entries(2), (Entries{4, 0, 31, 0}));
    EXPECT_TRUE(entries(3).empty()) << "one that was offline at first stays out";
    machine.write("/proc/stat", "cpu 9 9 9 9\ncpu0 5 0 0 10\ncpu2 3 1 0 22\ncpu5 4 0 0 31\n");
    EXPECT_EQ(entries(1), (Entries{3, 0, 22, 1})) << "it goes on";

    kernel_.reset();
    machine.write("/proc/stat", "cpu 9 9 9 9\ncpu0 1 0 0 10\ncpu1 500 0 0 9000\n");
    host().host_statistics(kNone);
    machine.write("/proc/stat", "cpu 9 9 9 9\ncpu0 1 0 0 10\n");
    EXPECT_EQ(entries(1), (Entries{500, 0, 9000, 0})) << "does not jump, though offline at the first detail";
}

TEST_F(LinuxKernelTest, EfficiencyProcessorsComeFirst) {
    machine.copyFrom(fixture("hybrid-laptop"));
    std::string stat = "cpu 9 9 9 9\n";
    for (int n = 0; n < 32; ++n)
        stat += "cpu" + std::to_string(n) + ' ' + std::to_string(100 + n) + " 0 50 10000\n";
    machine.write("/proc/stat", stat);
    for (const auto& [place, user] : {std::pair(0, 116), std::pair(15, 131), std::pair(16, 100)})
        EXPECT_EQ(entries(static_cast<std::size_t>(place)).at(0), user) << place;
    EXPECT_EQ(number(SysctlNumber::hw_perflevel0_physicalcpu), 8);
    EXPECT_EQ(number(SysctlNumber::hw_perflevel0_logicalcpu), 16);
    EXPECT_EQ(number(SysctlNumber::hw_perflevel1_physicalcpu), 16);
}

TEST_F(LinuxKernelTest, ZramIsNoDiskAndCountsFromWhenItIsSwappedToUntilItIsNotAndZswapIsNone) {
    machine.copyFrom(fixture("zram-desktop"));
    using Swaps = std::pair<std::uint64_t, std::uint64_t>;
    const auto swaps = [&](SwapCounters counters = SwapCounters::read) {
        const auto found = pages(counters);
        return found ? Swaps(found->swapins, found->swapouts) : Swaps(99, 99);
    };
    EXPECT_EQ(swaps(), Swaps(92149, 124000));
    // 10 pages in, 4 of them from zram; the other zram device, 1, has a file system on it.
    machine.write("/proc/vmstat", "pswpin 92159\npswpout 124000\n");
    machine.write("/sys/block/zram0/stat", "0 0 737656 0 0 0 992008 0 0 0 0\n");
    machine.write("/sys/block/zram1/stat", "0 0 999999 0 0 0 999999 0 0 0 0\n");
    EXPECT_EQ(swaps(), Swaps(92155, 124000));
    machine.write("/proc/vmstat", "pswpin garbage\n");
    EXPECT_EQ(swaps(), Swaps(92155, 124000)) << "unreadable counters stay";
    EXPECT_EQ(swaps(SwapCounters::leave), Swaps(0, 0)) << "not asked for";

    writeSwaps("");
    EXPECT_EQ(pages()->compressor_page_count, 0u);
    writeSwaps("/dev/zram0 partition 4 0 1\n/dev/zram1 partition 4 0 1\n");
    EXPECT_EQ(pages()->compressor_page_count, (68157440u + 536870912u) / 4096);
    writeSwaps("/dev/zram0 partition 4 0 1\n");
    EXPECT_EQ(pages()->compressor_page_count, 16640u);
    machine.write("/sys/block/zram0/mm_stat", "garbage");
    EXPECT_EQ(pages()->compressor_page_count, 0u);

    machine.write("/proc/meminfo",
                  "MemTotal: 100000 kB\nMemAvailable: 50000 kB\nZswap: 400 kB\nZswapped: 1000 kB\n");
    for (const auto& [used, left] : {std::pair(1500u, 500u), std::pair(999u, 0u)}) {
        writeSwaps("/dev/sda2 partition 8000 " + std::to_string(used) + " -2\n");
        EXPECT_EQ(pages()->compressor_page_count, 100u);
        EXPECT_EQ(kernel().sysctl().sysctlbyname_vm_swapusage(kNone)->xsu_used, left * 1024) << used;
    }
}

TEST_F(LinuxKernelTest, PressureWorksWithoutTheKernelsHelp) {
    const auto level = [&] { return number(SysctlNumber::kern_memorystatus_vm_pressure_level); };
    machine.write("/proc/meminfo", "MemTotal: 1000000 kB\nMemAvailable: 450000 kB\n");
    EXPECT_EQ(level(), 1) << "no pressure information";
    machine.makeFolder("/proc/pressure/memory");
    EXPECT_EQ(level(), 1) << "it is there but cannot be read";
    machine.remove("/proc/pressure/memory");
    machine.write("/proc/pressure/memory", "some avg10=10.00\nfull avg10=0.00\n");
    EXPECT_EQ(level(), 2);
    machine.write("/proc/pressure/memory", "garbage");
    EXPECT_EQ(level(), 1);
    machine.write("/proc/meminfo", "MemTotal: 1000000 kB\nMemAvailable: 0 kB\n");
    EXPECT_EQ(level(), 4) << "0 is an amount, not a missing line";
}

TEST_F(LinuxKernelTest, ACacheOfZfsThatComesLaterIsNoticedWithinAMinute) {
    machine.write("/proc/meminfo", "MemTotal: 1000000 kB\nMemAvailable: 100000 kB\n");
    EXPECT_EQ(pages()->external_page_count, 0u);
    machine.write("/proc/spl/kstat/zfs/arcstats", "c_min 4 0\nsize 4 409600\n");
    int ticks = 1;
    while (pages()->external_page_count == 0 && ticks < 100)
        ++ticks;
    EXPECT_EQ(ticks, 60);
}

TEST_F(LinuxKernelTest, ATickReadsEachOfItsFilesOnceAndOpensNone) {
    machine.copyFrom(fixture("zram-desktop"));
    const auto sortedReads = [&](TickToken tick, bool isFull) {
        observer->forget();
        host().host_statistics(tick);
        kernel().processInfo().physicalMemory(tick);
        host().host_statistics64(tick, isFull ? SwapCounters::read : SwapCounters::leave);
        kernel().sysctl().sysctlbyname(SysctlNumber::kern_memorystatus_vm_pressure_level, tick);
        kernel().sysctl().sysctlbyname_vm_swapusage(tick);
        if (isFull) host().host_processor_info(tick);
        std::sort(observer->read.begin(), observer->read.end());
        return observer->read;
    };
    std::vector<std::string> want{"/proc/meminfo", "/proc/pressure/memory", "/proc/stat", "/proc/swaps",
                                  "/sys/block/zram0/mm_stat"};
    sortedReads({1}, false);
    EXPECT_EQ(sortedReads({2}, false), want);
    EXPECT_TRUE(observer->opened.empty());
    want.insert(want.begin() + 4, "/proc/vmstat");
    want.push_back("/sys/block/zram0/stat");
    sortedReads({3}, true);
    EXPECT_EQ(sortedReads({4}, true), want) << "a full tick adds only the swap counters";
}

TEST_F(LinuxKernelTest, AReadingIsSharedWithinATickAndNeverBeyond) {
    machine.copyFrom(fixture("arm-board-three-tiers"));
    const auto after = [&](TickToken tick, const char* busy, const char* temperature) {
        machine.write("/proc/stat", std::string("cpu ") + busy + " 0 0 1\ncpu0 " + busy + " 0 0 1\n");
        machine.write("/sys/class/thermal/thermal_zone0/temp", temperature);
        return std::pair(host().host_statistics(tick)->user, kernel().processInfo().thermalState(tick));
    };
    EXPECT_EQ(after({7}, "1", "40000\n"), std::pair(1u, 0));
    EXPECT_EQ(after({7}, "2", "110000\n"), std::pair(1u, 0));
    EXPECT_EQ(host().host_processor_info({7})->ticks.at(0), 1);
    EXPECT_EQ(after({8}, "2", "110000\n"), std::pair(2u, 3));
    EXPECT_EQ(after(kNone, "3", "75000\n"), std::pair(3u, 1));
    EXPECT_EQ(after(kNone, "4", "40000\n"), std::pair(4u, 0)) << "outside a tick, nothing is shared";
}

}  // namespace
}  // namespace norvane
