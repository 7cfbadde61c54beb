#pragma once

#include <vector>

#include "platform/HostPort.h"
#include "platform/linux/KernelFiles.h"
#include "platform/linux/ProcessorSet.h"
#include "platform/linux/TickCounters.h"

namespace norvane {

// Processor time and memory from /proc and /sys.
class LinuxHost final : public HostPort {
 public:
    // The references outlive this.
    LinuxHost(KernelFiles& files, ProcessorSet& processors, std::uint64_t pageBytes,
              std::uint64_t ticksPerSecond);

    std::optional<HostCPULoadInfo> host_statistics(TickToken tick) override;
    // A processor that is offline keeps its last ticks.
    std::optional<ProcessorInfo> host_processor_info(TickToken tick) override;
    std::optional<VMStatistics64> host_statistics64(TickToken tick, SwapCounters swapCounters) override;
    std::uint64_t host_page_size() override { return pageBytes_; }

 private:
    KernelFiles& files_;
    ProcessorSet& processors_;
    std::uint64_t pageBytes_;
    // A processor's counters fall by less than this unless they started anew.
    std::uint64_t restartDrop_;

    const std::vector<ProcessorTicks>* firstReading_ = nullptr;  // by ascending number
    TickCounters machine_;
    std::vector<TickCounters> counters_;  // in the order of `firstReading_`
    std::vector<ProcessorTicks> lines_;
};

}  // namespace norvane
