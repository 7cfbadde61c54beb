#include "telemetry/MemoryReader.h"

#include "telemetry/MemoryPressure.h"
#include "telemetry/Units.h"

namespace norvane {
namespace {

double gigabytes(std::uint64_t pages, std::uint64_t pageSize) {
    return static_cast<double>(pages) * static_cast<double>(pageSize) / kBytesPerGB;
}

// A counter that went back did not move.
double moved(std::uint64_t before, std::uint64_t now) {
    return now > before ? static_cast<double>(now - before) : 0;
}

}  // namespace

MemoryBasics MemoryReader::readMemoryBasics(TickToken tick) {
    MemoryBasics basics;
    basics.total = static_cast<double>(processInfo_.physicalMemory(tick)) / kBytesPerGB;
    const auto pages = hostPort_.host_statistics64(tick, SwapCounters::leave);
    if (!pages) return basics;
    const std::uint64_t pageSize = hostPort_.host_page_size();
    basics.wired = gigabytes(pages->wire_count, pageSize);
    basics.compressed = gigabytes(pages->compressor_page_count, pageSize);
    basics.app = gigabytes(pages->active_count, pageSize);
    const auto swap = sysctl_.sysctlbyname_vm_swapusage(tick);
    basics.swap = swap ? static_cast<double>(swap->xsu_used) / kBytesPerGB : 0;
    basics.used = basics.wired + basics.app + basics.compressed;
    return basics;
}

std::int64_t MemoryReader::readMemoryPressure(TickToken tick) {
    return sysctl_.sysctlbyname(SysctlNumber::kern_memorystatus_vm_pressure_level, tick)
        .value_or(kNormalMemoryPressure);
}

MemoryDetail MemoryReader::readMemoryDetail(TickToken tick) {
    const auto pages = hostPort_.host_statistics64(tick, SwapCounters::read);
    if (!pages) return {};
    const std::uint64_t pageSize = hostPort_.host_page_size();
    MemoryDetail detail;
    detail.cachedFilesGB =
        gigabytes(pages->external_page_count, pageSize) + gigabytes(pages->purgeable_count, pageSize);

    if (const auto elapsed = interval_.sampled(wallClock_.CFAbsoluteTimeGetCurrent())) {
        const double pageMB = static_cast<double>(pageSize) / kBytesPerMB;
        detail.swapReadMBps = moved(lastPageIns_, pages->swapins) * pageMB / *elapsed;
        detail.swapWriteMBps = moved(lastPageOuts_, pages->swapouts) * pageMB / *elapsed;
    }
    lastPageIns_ = pages->swapins;
    lastPageOuts_ = pages->swapouts;
    return detail;
}

}  // namespace norvane
