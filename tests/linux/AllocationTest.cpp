#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "FakeSystemCalls.h"
#include "Fixture.h"
#include "platform/linux/LinuxKernel.h"
#include "TemporaryFolder.h"

// Sanitizers have an allocator of their own, which must see both ends of each allocation.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define NORVANE_COUNTS_ALLOCATIONS
#endif

#ifdef NORVANE_COUNTS_ALLOCATIONS

namespace {

thread_local std::size_t allocations = 0;

void* allocate(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}

}  // namespace

// All other forms of `new` for objects of ordinary alignment come down to this one.
void* operator new(std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace norvane {
namespace {

void lightTick(LinuxKernel& kernel, TickToken tick) {
    kernel.hostPort().host_statistics(tick);
    kernel.processInfo().physicalMemory(tick);
    kernel.hostPort().host_statistics64(tick, SwapCounters::leave);
    kernel.sysctl().sysctlbyname(SysctlNumber::kern_memorystatus_vm_pressure_level, tick);
    kernel.sysctl().sysctlbyname_vm_swapusage(tick);
    kernel.processInfo().thermalState(tick);
    kernel.processInfo().systemUptime();
    kernel.processInfo().isLowPowerModeEnabled();
}

// Allocations on this thread in ticks after the first few.
std::size_t allocationsWhenWarm(LinuxKernel& kernel) {
    std::uint64_t tick = 1;
    while (tick <= 3)
        lightTick(kernel, {tick++});
    const std::size_t before = allocations;
    while (tick <= 50)
        lightTick(kernel, {tick++});
    return allocations - before;
}

TEST(Allocation, IsCounted) {
    const std::size_t before = allocations;
    const auto something = std::make_unique<int>(1);
    EXPECT_EQ(allocations, before + 1);
}

TEST(Allocation, ALightTickOfTheLiveMachineDoesWithoutAny) {
    LinuxKernel kernel(RootFolder(""), SystemCalls::real());
    EXPECT_EQ(allocationsWhenWarm(kernel), 0u);
}

TEST(Allocation, ALightTickOfACapturedMachineDoesWithoutAny) {
    const FakeSystemCalls system;
    for (const char* machine : {"uniform-desktop", "zram-desktop", "zfs-machine", "old-kernel"}) {
        LinuxKernel kernel(RootFolder(fixture(machine)), system.calls, LinuxKernel::Lanes::sameThread());
        EXPECT_EQ(allocationsWhenWarm(kernel), 0u) << machine;
    }
}

TEST(Allocation, ReadingTemperaturesDoesWithoutAnyBetweenLooks) {
    const FakeSystemCalls system;
    LinuxKernel kernel(RootFolder(fixture("arm-board-three-tiers")), system.calls,
                       LinuxKernel::Lanes::sameThread());
    EXPECT_EQ(allocationsWhenWarm(kernel), 0u);
}

}  // namespace
}  // namespace norvane

#endif
