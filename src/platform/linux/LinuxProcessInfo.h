#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "platform/linux/KernelFiles.h"
#include "platform/linux/ReadBehind.h"
#include "platform/linux/SlowReading.h"
#include "platform/linux/SystemCalls.h"
#include "platform/linux/ThermalZones.h"
#include "platform/ProcessInfo.h"

namespace norvane {

// The machine as a process sees it, from /proc, /sys and a few system calls.
class LinuxProcessInfo final : public ProcessInfo {
 public:
    // `thermalLane` is where the thermal sources are read. `isLowPowerModeEnabled` is kept up to date by
    // somebody else. The references outlive this.
    LinuxProcessInfo(const RootFolder& root, KernelFiles& files, const SystemCalls& calls,
                     ReadBehind& readBehind, std::unique_ptr<Lane> thermalLane,
                     const std::atomic<bool>& isLowPowerModeEnabled);

    // What the kernel can give away: less than the modules hold, since firmware and graphics took their part.
    std::uint64_t physicalMemory(TickToken tick) override;
    // At most `ReadBehind::kBudget` in a tick.
    int thermalState(TickToken tick) override;
    double systemUptime() override;
    bool isLowPowerModeEnabled() override { return isLowPowerModeEnabled_.load(std::memory_order_relaxed); }

 private:
    KernelFiles& files_;
    SystemCalls calls_;
    SlowReading<ThermalZones::Answer> thermal_;
    const std::atomic<bool>& isLowPowerModeEnabled_;
    std::uint64_t lastPhysicalMemory_ = 0;
};

}  // namespace norvane
