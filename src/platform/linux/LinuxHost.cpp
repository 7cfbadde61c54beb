#include "platform/linux/LinuxHost.h"

#include <algorithm>
#include <cstddef>

namespace norvane {

namespace {

std::uint32_t wrapped(std::uint64_t sum) {
    return static_cast<std::uint32_t>(sum & 0xffff'ffffu);
}

// Where the processor is in a list by ascending number; the list's size where it is not.
std::size_t indexOf(const std::vector<ProcessorTicks>& processors, unsigned number) {
    const auto at = std::lower_bound(
        processors.begin(), processors.end(), number,
        [](const ProcessorTicks& processor, unsigned wanted) { return processor.number < wanted; });
    if (at == processors.end() || at->number != number) return processors.size();
    return static_cast<std::size_t>(at - processors.begin());
}

}  // namespace

LinuxHost::LinuxHost(KernelFiles& files, ProcessorSet& processors, std::uint64_t pageBytes,
                     std::uint64_t ticksPerSecond)
    : files_(files), processors_(processors), pageBytes_(pageBytes), restartDrop_(3 * ticksPerSecond) {}

std::optional<HostCPULoadInfo> LinuxHost::host_statistics(TickToken tick) {
    const auto text = files_.procStat(tick);
    const auto now = text ? parseMachineTicks(*text) : std::nullopt;
    if (!now) return std::nullopt;
    if (firstReading_ == nullptr) firstReading_ = processors_.fixBy(*text);

    machine_.feed(*now, restartDrop_);
    const CPUTicks& sums = machine_.sums();
    return HostCPULoadInfo{wrapped(sums.user), wrapped(sums.system), wrapped(sums.idle), wrapped(sums.nice)};
}

std::optional<ProcessorInfo> LinuxHost::host_processor_info(TickToken tick) {
    const auto text = files_.procStat(tick);
    if (!text || !parseMachineTicks(*text)) return std::nullopt;
    parseProcessorTicks(*text, lines_);
    if (lines_.empty()) return std::nullopt;
    if (firstReading_ == nullptr) firstReading_ = processors_.fixBy(*text);
    const CPUTopology* const topology = processors_.topology();
    if (firstReading_ == nullptr || topology == nullptr) return std::nullopt;

    if (counters_.empty()) {
        // From the very first reading, so that a processor that has gone offline since has its ticks, too,
        // and does not move by all of them when it comes back.
        counters_.resize(firstReading_->size());
        for (std::size_t i = 0; i < counters_.size(); ++i)
            counters_[i].feed((*firstReading_)[i].ticks, restartDrop_);
    }
    for (const ProcessorTicks& line : lines_) {
        const std::size_t index = indexOf(*firstReading_, line.number);
        if (index < counters_.size()) counters_[index].feed(line.ticks, restartDrop_);
    }

    ProcessorInfo info;
    info.processorCount = topology->order.size();
    info.ticks.reserve(info.processorCount * ProcessorInfo::kEntriesPerProcessor);
    for (const unsigned number : topology->order) {
        const CPUTicks& sums = counters_[indexOf(*firstReading_, number)].sums();
        for (const std::uint64_t sum : {sums.user, sums.system, sums.idle, sums.nice})
            info.ticks.push_back(static_cast<std::int32_t>(wrapped(sum)));
    }
    return info;
}

std::optional<VMStatistics64> LinuxHost::host_statistics64(TickToken tick, SwapCounters swapCounters) {
    const auto& figures = files_.memoryFigures(tick);
    if (!figures) return std::nullopt;
    VMStatistics64 pages;
    pages.wire_count = figures->wired / pageBytes_;
    pages.active_count = figures->programs / pageBytes_;
    pages.compressor_page_count = figures->compressed / pageBytes_;
    pages.external_page_count = figures->fileCache / pageBytes_;
    pages.purgeable_count = figures->purgeable / pageBytes_;
    if (swapCounters == SwapCounters::read) {
        const SwapTraffic& traffic = files_.swapTraffic(tick);
        pages.swapins = traffic.swapins();
        pages.swapouts = traffic.swapouts();
    }
    return pages;
}

}  // namespace norvane
