#include "MadeProcessors.h"

#include <chrono>
#include <cmath>
#include <numbers>

namespace norvane {

MadeProcessors::Ticks MadeProcessors::ticksOf(std::size_t processor) const {
    const double seconds = std::chrono::duration<double>(clock_.now().time_since_epoch()).count();
    // The sum of a load that swings about a half, with a period of its own for each processor.
    const double turn = 2 * std::numbers::pi / (20 + 3 * static_cast<double>(processor % 13));
    const double busy = 0.5 * seconds - 0.45 / turn * std::cos(turn * seconds);
    return {static_cast<std::uint32_t>(100 * busy), static_cast<std::uint32_t>(100 * (seconds - busy))};
}

std::optional<HostCPULoadInfo> MadeProcessors::host_statistics(TickToken) {
    HostCPULoadInfo all;
    for (std::size_t i = 0; i < kCount; ++i) {
        const Ticks ticks = ticksOf(i);
        all.user += ticks.busy;
        all.idle += ticks.idle;
    }
    return all;
}

std::optional<ProcessorInfo> MadeProcessors::host_processor_info(TickToken) {
    ProcessorInfo info{.processorCount = kCount, .ticks = {}};
    for (std::size_t i = 0; i < kCount; ++i) {
        const Ticks ticks = ticksOf(i);
        info.ticks.insert(info.ticks.end(), {static_cast<std::int32_t>(ticks.busy), 0,
                                             static_cast<std::int32_t>(ticks.idle), 0});
    }
    return info;
}

std::optional<std::int64_t> MadeProcessors::sysctlbyname(SysctlNumber name, TickToken tick) {
    switch (name) {
        case SysctlNumber::hw_logicalcpu:
            return kCount;
        case SysctlNumber::hw_perflevel0_physicalcpu:
        case SysctlNumber::hw_perflevel1_physicalcpu:
        case SysctlNumber::hw_perflevel0_logicalcpu:
        case SysctlNumber::hw_perflevel1_logicalcpu:
            return std::nullopt;
        default:
            return sysctl_.sysctlbyname(name, tick);
    }
}

}  // namespace norvane
