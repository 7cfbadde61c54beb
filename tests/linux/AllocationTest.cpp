#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "FakeSystemCalls.h"
#include "Fixture.h"
#include "platform/linux/LinuxKernel.h"

// Sanitizers have an allocator of their own, which must see both ends of each allocation.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

thread_local std::size_t allocations = 0;

}  // namespace

// All other forms of `new` for objects of ordinary alignment come down to this one.
void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace norvane {
namespace {

TEST(Allocation, ALightTickDoesWithoutAny) {
    const FakeSystemCalls system;
    for (const char* machine : {"", "zram-desktop", "zfs-machine", "old-kernel", "arm-board-three-tiers"}) {
        const bool isLive = *machine == '\0';
        LinuxKernel kernel(RootFolder(isLive ? "" : fixture(machine)),
                           isLive ? SystemCalls::real() : system.calls,
                           isLive ? LinuxKernel::Lanes::threads() : LinuxKernel::Lanes::sameThread());
        std::size_t before = 0;
        for (TickToken tick{1}; tick.value <= 50; ++tick.value) {
            if (tick.value == 4) before = allocations;  // it is warm
            kernel.hostPort().host_statistics(tick);
            kernel.processInfo().physicalMemory(tick);
            kernel.hostPort().host_statistics64(tick, SwapCounters::leave);
            kernel.sysctl().sysctlbyname(SysctlNumber::kern_memorystatus_vm_pressure_level, tick);
            kernel.sysctl().sysctlbyname_vm_swapusage(tick);
            kernel.processInfo().thermalState(tick);
            kernel.processInfo().systemUptime();
            kernel.processInfo().isLowPowerModeEnabled();
        }
        EXPECT_EQ(allocations, before) << machine;
        EXPECT_GT(allocations, 0u) << "they are counted";
    }
}

}  // namespace
}  // namespace norvane

#endif
