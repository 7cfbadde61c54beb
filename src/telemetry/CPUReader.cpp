#include "telemetry/CPUReader.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <utility>

#include "telemetry/TickMovement.h"

namespace norvane {
namespace {

constexpr std::size_t kEntries = ProcessorInfo::kEntriesPerProcessor;

// The ticks of one processor in a flat array.
HostCPULoadInfo ticksOf(std::span<const std::int32_t> ticks, std::size_t processor) {
    const auto at = [&](std::size_t entry) {
        return static_cast<std::uint32_t>(ticks[kEntries * processor + entry]);
    };
    return {.user = at(0), .system = at(1), .idle = at(2), .nice = at(3)};
}

double meanOf(const std::vector<double>& usages) {
    if (usages.empty()) return 0;
    return std::accumulate(usages.begin(), usages.end(), 0.0) / static_cast<double>(usages.size());
}

}  // namespace

double CPUReader::readTotalCPUUsage(TickToken tick) {
    const auto now = hostPort_.host_statistics(tick);
    if (!now) return 0;
    const auto before = std::exchange(lastCPUTicks_, now);
    return before ? movementBetween(*before, *now).busyPercent() : 0;
}

CoreUsageReading CPUReader::readCoreUsage(TickToken tick) {
    auto info = hostPort_.host_processor_info(tick);
    if (!info || info->ticks.empty()) return {};
    const CoreCounts counts = coreCounts();

    const std::vector<std::int32_t> before = std::exchange(lastProcessorTicks_, std::move(info->ticks));
    const std::vector<std::int32_t>& now = lastProcessorTicks_;
    CoreUsageReading reading;
    if (before.empty()) {
        reading.performanceUsages.assign(static_cast<std::size_t>(counts.performance), 0.0);
        reading.efficiencyUsages.assign(static_cast<std::size_t>(counts.efficiency), 0.0);
        return reading;
    }

    double idle = 0;
    double all = 0;
    const std::size_t processors = std::min(info->processorCount, now.size() / kEntries);
    for (std::size_t i = 0; i < processors; ++i) {
        // A processor that the last reading did not have has nothing to compare with.
        const bool isNew = (i + 1) * kEntries > before.size();
        const TickMovement moved =
            isNew ? TickMovement{} : movementBetween(ticksOf(before, i), ticksOf(now, i));
        auto& usages = i < static_cast<std::size_t>(counts.efficiency) ? reading.efficiencyUsages
                                                                       : reading.performanceUsages;
        usages.push_back(moved.busyPercent());
        idle += moved.idle();
        all += moved.all;
    }
    reading.performanceUsage = meanOf(reading.performanceUsages);
    reading.efficiencyUsage = meanOf(reading.efficiencyUsages);
    reading.idlePercent = all > 0 ? idle / all * 100 : 0;
    return reading;
}

CoreCounts CPUReader::coreCounts() {
    if (coreCounts_) return *coreCounts_;
    const auto count = [this](SysctlNumber name) {
        // No machine has more; a garbled answer must not become a list of that length.
        constexpr std::int64_t kMost = 65'536;
        return std::clamp<std::int64_t>(sysctl_.sysctlbyname(name, TickToken::none()).value_or(0), 0, kMost);
    };
    CoreCounts counts;
    counts.efficiency = count(SysctlNumber::hw_perflevel1_logicalcpu);
    counts.performance = count(SysctlNumber::hw_perflevel0_logicalcpu);
    if (counts.performance == 0) counts.performance = count(SysctlNumber::hw_logicalcpu);
    counts.total = counts.efficiency + counts.performance;
    coreCounts_ = counts;
    return counts;
}

}  // namespace norvane
