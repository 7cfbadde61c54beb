#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/HostPort.h"
#include "platform/Sysctl.h"
#include "telemetry/CoreCounts.h"
#include "telemetry/CoreUsageReading.h"

namespace norvane {

// Turns cumulative tick counters into percentages. Belongs to the tick.
class CPUReader {
 public:
    CPUReader(HostPort& hostPort, Sysctl& sysctl) : hostPort_(hostPort), sysctl_(sysctl) {}

    // Whole-machine busy share since the last call, 0 to 100. 0 on the first call, on a failed read, and
    // where a counter moved backwards.
    double readTotalCPUUsage(TickToken tick);

    // Each core since the last call of this, however long that was. A failed read gives empty lists and
    // zeros, and the next good one measures from the last stored array. The first read gives zeros for every
    // core.
    CoreUsageReading readCoreUsage(TickToken tick);

    // Asked of the machine on the first request and then kept. A machine without kinds of cores has
    // performance cores alone.
    CoreCounts coreCounts();

 private:
    HostPort& hostPort_;
    Sysctl& sysctl_;

    std::optional<HostCPULoadInfo> lastCPUTicks_;
    // Four entries per processor; empty until the first read.
    std::vector<std::int32_t> lastProcessorTicks_;
    std::optional<CoreCounts> coreCounts_;
};

}  // namespace norvane
