#pragma once

#include <cstdint>
#include <optional>

#include "platform/HostCPULoadInfo.h"
#include "platform/ProcessorInfo.h"
#include "platform/TickToken.h"
#include "platform/VMStatistics64.h"

namespace norvane {

// Whether `host_statistics64` also reads the swap counters, which cost a reading of their own.
enum class SwapCounters { leave, read };

// What the engine asks the kernel about processors and memory. Asked from the sampler's queue only. The calls
// return at once and never throw; no value means that the call failed this time.
class HostPort {
 public:
    virtual ~HostPort() = default;

    // Ticks of the whole machine. They never step back, but wrap.
    virtual std::optional<HostCPULoadInfo> host_statistics(TickToken tick) = 0;

    // Ticks of each processor. The number of processors is the same at every read on a well-behaved machine;
    // whoever reads must bear another.
    virtual std::optional<ProcessorInfo> host_processor_info(TickToken tick) = 0;

    virtual std::optional<VMStatistics64> host_statistics64(TickToken tick, SwapCounters swapCounters) = 0;

    // Bytes in a page; above 0. Never fails.
    virtual std::uint64_t host_page_size() = 0;
};

}  // namespace norvane
