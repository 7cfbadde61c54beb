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
constexpr const char* kSwapsHead = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";

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

    void lightTick(TickToken tick) {
        host().host_statistics(tick);
        kernel().processInfo().physicalMemory(tick);
        host().host_statistics64(tick, SwapCounters::leave);
        kernel().sysctl().sysctlbyname(SysctlNumber::kern_memorystatus_vm_pressure_level, tick);
        kernel().sysctl().sysctlbyname_vm_swapusage(tick);
    }
    std::vector<std::string> sortedReads() const {
        std::vector<std::string> reads = observer->read;
        std::sort(reads.begin(), reads.end());
        return reads;
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

TEST_F(LinuxKernelTest, AnEmptyMachineFailsQuietly) {
    EXPECT_FALSE(host().host_statistics(kNone));
    EXPECT_FALSE(host().host_processor_info(kNone));
    EXPECT_FALSE(host().host_statistics64(kNone, SwapCounters::read));
    EXPECT_FALSE(kernel().sysctl().sysctlbyname_vm_swapusage(kNone));
    EXPECT_FALSE(kernel().sysctl().sysctlbyname(SysctlText::machdep_cpu_brand_string));
    for (const SysctlNumber name :
         {SysctlNumber::hw_logicalcpu, SysctlNumber::hw_perflevel0_physicalcpu,
          SysctlNumber::hw_optional_arm64, SysctlNumber::kern_memorystatus_vm_pressure_level}) {
        EXPECT_FALSE(number(name)) << nameOf(name);
    }
    EXPECT_EQ(kernel().processInfo().physicalMemory(kNone), std::uint64_t{3} << 30)
        << "the system call's answer";
    EXPECT_EQ(kernel().processInfo().systemUptime(), 1234.5) << "the clock's answer";
    EXPECT_EQ(kernel().processInfo().thermalState(kNone), 0);
    machine.write("/proc/uptime", "350735.47 234388.90\n");
    EXPECT_DOUBLE_EQ(kernel().processInfo().systemUptime(), 350735.47);
    machine.write("/proc/uptime", "soon\n");
    EXPECT_EQ(kernel().processInfo().systemUptime(), 1234.5);
    EXPECT_FALSE(kernel().processInfo().isLowPowerModeEnabled());
    kernel().lowPowerMode() = true;
    EXPECT_TRUE(kernel().processInfo().isLowPowerModeEnabled()) << "what its watcher says";
}

// Processors.

TEST_F(LinuxKernelTest, MachineTicksBearACounterThatStepsBackAndWrapAt32Bits) {
    machine.write("/proc/stat", "cpu 100 5 20 4294967290 0 0 0 9 50 5\ncpu0 1 1 1 1\n");
    EXPECT_EQ(host().host_statistics(kNone), (HostCPULoadInfo{100, 20, 4294967290u, 5}));
    machine.write("/proc/stat", "cpu 130 5 21 4294967289 0 1 2 99 80 5\ncpu0 1 1 1 1\n");
    EXPECT_EQ(host().host_statistics(kNone), (HostCPULoadInfo{130, 24, 4294967290u, 5}));
    machine.write("/proc/stat", "cpu 130 5 21 4294967295 3 1 2 99 80 5\ncpu0 1 1 1 1\n");
    EXPECT_EQ(host().host_statistics(kNone), (HostCPULoadInfo{130, 24, 2, 5}));

    kernel_.reset();
    system.calls.ticksPerSecond = 1000;
    machine.write("/proc/stat", "cpu 0 0 0 5000\ncpu0 1 1 1 1\n");
    host().host_statistics(kNone);
    machine.write("/proc/stat", "cpu 10 0 0 2000\ncpu0 1 1 1 1\n");
    EXPECT_EQ(host().host_statistics(kNone)->user, 10u) << "3 s back, whatever the unit: no restart";
    machine.write("/proc/stat", "cpu 20 0 0 1999\ncpu0 1 1 1 1\n");
    EXPECT_EQ(host().host_statistics(kNone)->user, 10u) << "more: a restart, and nothing moves";
    machine.write("/proc/stat", "cpu 21 0 0 2001\ncpu0 1 1 1 1\n");
    EXPECT_EQ(host().host_statistics(kNone), (HostCPULoadInfo{11, 0, 5002, 0})) << "from there on it goes on";
}

TEST_F(LinuxKernelTest, DamagedProcessorTimesFailForOneReadingOnly) {
    for (const char* text :
         {"cpu 1 2 3\ncpu0 1 2 3 4\n", "cpu 1 2 3 4\nintr 5\n", "cpu 1 2 3 4\ncpu0 1 2 3 4\n", ""}) {
        const std::string_view told = text;
        machine.write("/proc/stat", told);
        EXPECT_EQ(host().host_statistics(kNone).has_value(), told.starts_with("cpu 1 2 3 4")) << told;
        EXPECT_EQ(host().host_processor_info(kNone).has_value(), told == "cpu 1 2 3 4\ncpu0 1 2 3 4\n")
            << told;
    }
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
    EXPECT_EQ(number(SysctlNumber::hw_logicalcpu), 3);

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
    EXPECT_EQ(entries(0)[0], 116) << "processor 16";
    EXPECT_EQ(entries(15)[0], 131);
    EXPECT_EQ(entries(16)[0], 100) << "processor 0";
    EXPECT_EQ(number(SysctlNumber::hw_perflevel0_physicalcpu), 8);
    EXPECT_EQ(number(SysctlNumber::hw_perflevel0_logicalcpu), 16);
    EXPECT_EQ(number(SysctlNumber::hw_perflevel1_physicalcpu), 16);
}

TEST_F(LinuxKernelTest, OnlyTheWordsOf64BitArmMeanArm64) {
    for (const auto& [word, want] : std::vector<std::pair<const char*, bool>>{{"aarch64", true},
                                                                              {"aarch64_be", true},
                                                                              {"armv8l", true},
                                                                              {"armv7l", false},
                                                                              {"x86_64", false},
                                                                              {"", false}}) {
        kernel_.reset();
        system.calls.machine = word;
        EXPECT_EQ(number(SysctlNumber::hw_optional_arm64).has_value(), want) << word;
    }
}

// Memory.

TEST_F(LinuxKernelTest, PhysicalMemoryFollowsTheMachineAndOutlivesABadReading) {
    ProcessInfo& process = kernel().processInfo();
    machine.write("/proc/meminfo", "MemTotal: 1000 kB\n");
    EXPECT_EQ(process.physicalMemory(kNone), 1024000u);
    machine.write("/proc/meminfo", "MemTotal: 2000 kB\n");
    EXPECT_EQ(process.physicalMemory(kNone), 2048000u) << "memory was added";
    for (const char* damaged : {"", "MemTotal: x kB\n", "MemTotal: 0 kB\n"}) {
        machine.write("/proc/meminfo", damaged);
        EXPECT_EQ(process.physicalMemory(kNone), 2048000u) << damaged;
        EXPECT_FALSE(host().host_statistics64(kNone, SwapCounters::leave)) << damaged;
    }
}

TEST_F(LinuxKernelTest, PagesInZswapAreNeitherOnTheDiskNorOfTheirOriginalSize) {
    machine.write("/proc/meminfo",
                  "MemTotal: 100000 kB\nMemAvailable: 50000 kB\nZswap: 400 kB\nZswapped: 1000 kB\n");
    machine.write("/proc/swaps", std::string(kSwapsHead) + "/dev/sda2 partition 8000 1500 -2\n");
    EXPECT_EQ(host().host_statistics64(kNone, SwapCounters::leave)->compressor_page_count, 100u);
    EXPECT_EQ(kernel().sysctl().sysctlbyname_vm_swapusage(kNone),
              (XswUsage{8000 * 1024, 7500 * 1024, 500 * 1024}));
    machine.write("/proc/swaps", std::string(kSwapsHead) + "/dev/sda2 partition 8000 999 -2\n");
    EXPECT_EQ(kernel().sysctl().sysctlbyname_vm_swapusage(kNone)->xsu_used, 0u) << "never below nothing";
}

TEST_F(LinuxKernelTest, SwapCountersLeaveZramOutAndSurviveItsReset) {
    machine.copyFrom(fixture("zram-desktop"));
    using Swaps = std::pair<std::uint64_t, std::uint64_t>;
    const auto swaps = [&](SwapCounters counters = SwapCounters::read) {
        const auto pages = host().host_statistics64(kNone, counters);
        return pages ? Swaps(pages->swapins, pages->swapouts) : Swaps(99, 99);
    };
    EXPECT_EQ(swaps(), Swaps(92149, 124000));
    // 10 pages in, 4 of them from zram; the other zram device, 1, has a file system on it.
    machine.write("/proc/vmstat", "pswpin 92159\npswpout 124000\n");
    machine.write("/sys/block/zram0/stat", "0 0 737656 0 0 0 992008 0 0 0 0\n");
    machine.write("/sys/block/zram1/stat", "0 0 999999 0 0 0 999999 0 0 0 0\n");
    EXPECT_EQ(swaps(), Swaps(92155, 124000));
    machine.write("/proc/vmstat", "pswpin 92160\npswpout 124001\n");
    machine.write("/sys/block/zram0/stat", "0 0 0 0 0 0 0 0 0 0 0\n");
    EXPECT_EQ(swaps(), Swaps(92156, 124001)) << "the device was reset";
    machine.write("/proc/vmstat", "pswpin garbage\n");
    EXPECT_EQ(swaps(), Swaps(92156, 124001)) << "unreadable counters stay";
    EXPECT_EQ(swaps(SwapCounters::leave), Swaps(0, 0)) << "not asked for";
    machine.remove("/proc/vmstat");
    machine.makeFolder("/proc/vmstat");
    kernel_.reset();
    EXPECT_EQ(swaps(), Swaps(0, 0));
}

TEST_F(LinuxKernelTest, ZramCountsFromWhenItIsSwappedToUntilItIsNot) {
    machine.copyFrom(fixture("zram-desktop"));
    const auto compressed = [&] {
        return host().host_statistics64(kNone, SwapCounters::leave)->compressor_page_count;
    };
    machine.write("/proc/swaps", kSwapsHead);
    EXPECT_EQ(compressed(), 0u);
    machine.write("/proc/swaps",
                  std::string(kSwapsHead) + "/dev/zram0 partition 4 0 1\n/dev/zram1 partition 4 0 1\n");
    EXPECT_EQ(compressed(), (68157440u + 536870912u) / 4096);
    machine.write("/proc/swaps", std::string(kSwapsHead) + "/dev/zram0 partition 4 0 1\n");
    EXPECT_EQ(compressed(), 16640u);
    machine.write("/sys/block/zram0/mm_stat", "garbage");
    EXPECT_EQ(compressed(), 0u);
}

TEST_F(LinuxKernelTest, PressureWorksWithoutTheKernelsHelp) {
    const auto level = [&] { return number(SysctlNumber::kern_memorystatus_vm_pressure_level); };
    EXPECT_EQ(level(), std::nullopt);
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
    const auto external = [&] {
        return host().host_statistics64(kNone, SwapCounters::leave)->external_page_count;
    };
    EXPECT_EQ(external(), 0u);
    machine.write("/proc/spl/kstat/zfs/arcstats", "c_min 4 0\nsize 4 409600\n");
    int ticks = 1;
    while (external() == 0 && ticks < 100)
        ++ticks;
    EXPECT_EQ(ticks, 60);
}

// Heat.

TEST_F(LinuxKernelTest, ThermalStateIsThatOfTheZones) {
    machine.copyFrom(fixture("arm-board-three-tiers"));
    EXPECT_EQ(kernel().processInfo().thermalState({1}), 0);
    machine.write("/sys/class/thermal/thermal_zone0/temp", "110000\n");
    EXPECT_EQ(kernel().processInfo().thermalState({1}), 0) << "the same tick";
    EXPECT_EQ(kernel().processInfo().thermalState({2}), 3);
    machine.write("/sys/class/thermal/thermal_zone0/temp", "75000\n");
    EXPECT_EQ(kernel().processInfo().thermalState({3}), 1);
    machine.write("/sys/class/thermal/cooling_device0/cur_state", "4\n");
    EXPECT_EQ(kernel().processInfo().thermalState({4}), 2);
}

// What a tick costs.

TEST_F(LinuxKernelTest, ATickReadsEachOfItsFilesOnceAndOpensNone) {
    machine.copyFrom(fixture("zram-desktop"));
    std::vector<std::string> want{"/proc/meminfo", "/proc/pressure/memory", "/proc/stat", "/proc/swaps",
                                  "/sys/block/zram0/mm_stat"};
    lightTick({1});
    observer->forget();
    lightTick({2});
    EXPECT_EQ(sortedReads(), want);
    EXPECT_TRUE(observer->opened.empty());

    for (const TickToken tick : {TickToken{3}, TickToken{4}}) {
        observer->forget();
        lightTick(tick);
        host().host_processor_info(tick);
        host().host_statistics64(tick, SwapCounters::read);
    }
    want.insert(want.begin() + 4, "/proc/vmstat");
    want.push_back("/sys/block/zram0/stat");
    EXPECT_EQ(sortedReads(), want) << "a full tick adds only the swap counters";
}

TEST_F(LinuxKernelTest, AReadingIsSharedWithinATickAndNeverBeyond) {
    machine.write("/proc/stat", "cpu 1 0 0 1\ncpu0 1 0 0 1\n");
    EXPECT_EQ(host().host_statistics({7})->user, 1u);
    machine.write("/proc/stat", "cpu 2 0 0 1\ncpu0 2 0 0 1\n");
    EXPECT_EQ(host().host_statistics({7})->user, 1u);
    EXPECT_EQ(host().host_processor_info({7})->ticks[0], 1);
    EXPECT_EQ(host().host_statistics({8})->user, 2u);
    machine.write("/proc/stat", "cpu 3 0 0 1\ncpu0 3 0 0 1\n");
    EXPECT_EQ(host().host_statistics(kNone)->user, 3u);
    machine.write("/proc/stat", "cpu 4 0 0 1\ncpu0 4 0 0 1\n");
    EXPECT_EQ(host().host_statistics(kNone)->user, 4u) << "outside a tick, nothing is shared";
}

}  // namespace
}  // namespace norvane
