#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/LinuxKernel.h"

namespace norvane {
namespace {

// What must hold on whatever machine the tests run on.
class LiveMachineTest : public testing::Test {
 protected:
    LinuxKernel kernel{RootFolder(""), SystemCalls::real()};
};

TEST_F(LiveMachineTest, ThereIsAnEntryForEachProcessor) {
    const auto info = kernel.hostPort().host_processor_info({1});
    ASSERT_TRUE(info);
    EXPECT_EQ(info->ticks.size(), info->processorCount * ProcessorInfo::kEntriesPerProcessor);
    EXPECT_EQ(static_cast<long>(info->processorCount), sysconf(_SC_NPROCESSORS_ONLN));
    const auto number = [&](SysctlNumber name) {
        return kernel.sysctl().sysctlbyname(name, TickToken::none());
    };
    EXPECT_EQ(number(SysctlNumber::hw_logicalcpu), static_cast<std::int64_t>(info->processorCount));
    const auto performance = number(SysctlNumber::hw_perflevel0_logicalcpu);
    const auto efficiency = number(SysctlNumber::hw_perflevel1_logicalcpu);
    EXPECT_EQ(performance.has_value(), efficiency.has_value());
    EXPECT_TRUE(!performance || *performance + efficiency.value_or(0) == sysconf(_SC_NPROCESSORS_ONLN));
}

TEST_F(LiveMachineTest, ProcessorTimePassesAtItsRateAndNeverBack) {
    HostPort& host = kernel.hostPort();
    const auto first = host.host_statistics(TickToken::none());
    ASSERT_TRUE(first);
    // Work until the counters move, so that there is something to see.
    const SystemCalls calls = SystemCalls::real();
    const MonotonicInstant begin = calls.now();
    std::uint32_t moved = 0;
    HostCPULoadInfo last = *first;
    while (moved < 20 && calls.now() - begin < std::chrono::seconds(30)) {
        const auto next = host.host_statistics(TickToken::none());
        ASSERT_TRUE(next);
        for (const auto counter : {&HostCPULoadInfo::user, &HostCPULoadInfo::system, &HostCPULoadInfo::idle,
                                   &HostCPULoadInfo::nice}) {
            ASSERT_LT((*next).*counter - last.*counter, 0x8000'0000u) << "a step back";
            moved += (*next).*counter - last.*counter;
        }
        last = *next;
    }
    const double seconds = std::chrono::duration<double>(calls.now() - begin).count();
    const auto processors = static_cast<double>(sysconf(_SC_NPROCESSORS_ONLN));
    EXPECT_GE(moved, 20u);
    // Busy and idle together are all the time there was; the counters are updated tick by tick, so up to a
    // few of each processor are out.
    EXPECT_LE(moved,
              seconds * processors * static_cast<double>(calls.ticksPerSecond) * 1.1 + 4 * 4 * processors);
}

TEST_F(LiveMachineTest, AnswersArePlausible) {
    const TickToken tick{1};
    EXPECT_TRUE(kernel.sysctl().sysctlbyname(SysctlText::machdep_cpu_brand_string));
    const auto level = kernel.sysctl().sysctlbyname(SysctlNumber::kern_memorystatus_vm_pressure_level, tick);
    EXPECT_TRUE(level == 1 || level == 2 || level == 4);
    const int thermal = kernel.processInfo().thermalState(tick);
    EXPECT_TRUE(thermal >= 0 && thermal <= 3);
    const auto swap = kernel.sysctl().sysctlbyname_vm_swapusage(tick);
    if (swap) {
        EXPECT_EQ(swap->xsu_used + swap->xsu_avail, swap->xsu_total);
    }
    EXPECT_NEAR(kernel.processInfo().systemUptime(), SystemCalls::real().bootSeconds(), 5);
    EXPECT_GT(SystemCalls::real().memoryBytes(), 0u);
    EXPECT_FALSE(SystemCalls::real().machine.empty());
}

}  // namespace
}  // namespace norvane
