#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include "platform/linux/LinuxKernel.h"

namespace norvane {
namespace {

// What must hold on whatever machine the tests run on.
TEST(LiveMachine, TellsWhatItsOwnToolsTell) {
    const SystemCalls calls = SystemCalls::real();
    LinuxKernel kernel{RootFolder(""), calls};
    const auto info = kernel.hostPort().host_processor_info({1});
    ASSERT_TRUE(info && kernel.hostPort().host_statistics({1}));
    EXPECT_EQ(info->ticks.size(), info->processorCount * ProcessorInfo::kEntriesPerProcessor);
    EXPECT_EQ(static_cast<long>(info->processorCount), sysconf(_SC_NPROCESSORS_ONLN));
    EXPECT_NEAR(kernel.processInfo().systemUptime(), calls.bootSeconds(), 5);
    EXPECT_GT(calls.memoryBytes(), 0u);
    EXPECT_FALSE(calls.machine.empty());

    // What is left for others than the administrator is less than what is free.
    FILE* const told = ::popen("df -B1 --output=size,avail /", "r");
    ASSERT_NE(told, nullptr);
    double total = 0;
    double available = 0;
    EXPECT_EQ(::fscanf(told, "%*[^\n] %lf %lf", &total, &available), 2);
    EXPECT_EQ(::pclose(told), 0);
    const auto space = calls.fileSystemSpace("/");
    ASSERT_TRUE(space);
    EXPECT_EQ(static_cast<double>(space->totalBytes), total);
    EXPECT_NEAR(static_cast<double>(space->availableBytes), available, total / 100);
}

}  // namespace
}  // namespace norvane
