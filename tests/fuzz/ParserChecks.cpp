#include <chrono>
#include <tuple>
#include <utility>

#include "Checks.h"
#include "platform/linux/ArcStats.h"
#include "platform/linux/BlockStat.h"
#include "platform/linux/CPUInfo.h"
#include "platform/linux/CPUList.h"
#include "platform/linux/DesktopMountOptions.h"
#include "platform/linux/DiskStats.h"
#include "platform/linux/DrmFdinfo.h"
#include "platform/linux/DrmUtilization.h"
#include "platform/linux/MemInfo.h"
#include "platform/linux/MmStat.h"
#include "platform/linux/MountInfo.h"
#include "platform/linux/OsReleaseName.h"
#include "platform/linux/PowerSupplyUevent.h"
#include "platform/linux/Pressure.h"
#include "platform/linux/ProcStat.h"
#include "platform/linux/Swaps.h"
#include "platform/linux/UdevData.h"
#include "platform/linux/VmStat.h"
#include "Property.h"

namespace norvane {
namespace {

// A parser finds the same in `strange`, the text with something more.
template <auto parsed, auto strange = amongUnknownLines>
void checkParser(std::string_view text) {
    require(parsed(strange(text)) == parsed(text), "what is unknown doesn't matter");
}

// For parsers of which the first of two lines about the same counts.
std::string twice(std::string_view text) {
    return joined(amongUnknownLines(text), text);
}

std::string betweenBlanks(std::string_view text) {
    return joined(" \t", text, " \n");
}

// Parsers whose results cannot be compared as they are, or that have more to hold to.

auto memInfo(std::string_view text) {
    const auto [total, free, available, buffers, cached, swapTotal, swapFree, zswap, zswapped, anon, shmem,
                kernel, slab] = parseMemInfo(text);
    return std::tuple(total, free, available, buffers, cached, swapTotal, swapFree, zswap, zswapped, anon,
                      shmem, kernel, slab);
}

auto cpuInfo(std::string_view text) {
    const auto [modelName, cpuModel, cpu, uarch, hardware, armParts] = parseCPUInfo(text);
    require(armParts.size() <= 16, "the number of designs has a bound");
    for (const ArmPart& part : armParts)
        require(rankOf(part) >= 0 && nameOf(part).size() < 32, "each has a rank, and a name or none");
    return std::tuple(modelName, cpuModel, cpu, uarch, hardware, armParts);
}

auto swaps(std::string_view text) {
    std::vector<SwapArea> areas{{1, 2, 3}};  // left over from an earlier reading
    require(parseSwaps(text, areas) || areas.empty(), "what is no table has no areas");
    return areas;
}

auto diskStats(std::string_view text) {
    std::vector<DiskStatsLine> lines{{"left over", {1, 2}}};
    parseDiskStats(text, lines);
    std::vector<std::tuple<std::string, BlockStat>> found;
    for (const auto& [name, stat] : lines)
        found.emplace_back(name, stat);
    return found;
}

auto procStat(std::string_view text) {
    std::vector<ProcessorTicks> processors{{7, {1, 2, 3, 4}}};
    parseProcessorTicks(text, processors);
    for (const ProcessorTicks& processor : processors)
        require(processor.number <= 65535, "numbers of processors have a bound");
    return std::pair(parseMachineTicks(text), processors);
}

auto cpuList(std::string_view text) {
    const auto processors = parseCPUList(text);
    for (std::size_t i = 0; processors && i < processors->size(); ++i) {
        const unsigned number = (*processors)[i];
        require(number <= 65535 && (i == 0 || number > (*processors)[i - 1]),
                "each is there once, in order, within a bound");
    }
    return processors;
}

auto mountInfo(std::string_view text) {
    const auto mounts = parseMountInfo(text);
    for (const Mount& mount : mounts) {
        require(mount.point.starts_with('/'), "a mount has a place");
        require((mount.point + mount.root + mount.source).find('\0') == std::string::npos,
                "no path has a NUL");
    }
    return mounts;
}

auto powerSupplyUevent(std::string_view text) {
    return parsePowerSupplyUevent(text).properties;
}

// The two halves of the text are two looks at the clients, whatever the counters did in between.
auto drmFdinfo(std::string_view text) {
    const std::size_t middle = std::min(text.find("===\n"), text.size());
    DrmUtilization utilization;
    bool isSecondHalf = false;
    for (const int second : {1000, 1003, 1003, 999}) {
        DrmClientEngines clients;
        const auto info = parseDrmFdinfo(isSecondHalf ? text.substr(middle) : text.substr(0, middle));
        if (info) clients[info->clientId] = info->engines;
        const auto percent =
            utilization.percent(std::move(clients), MonotonicInstant(std::chrono::seconds(second)));
        require(!percent || second != 1000, "one look tells nothing");
        require(!percent || (*percent >= 0 && *percent <= 100), "a share is one of the whole");
        isSecondHalf = !isSecondHalf;
    }
    const DrmFdinfo info = parseDrmFdinfo(text).value_or(DrmFdinfo());
    return std::tuple(info.clientId, info.pdev, info.engines);
}

}  // namespace

Checks parserChecks() {
    return {{"ArcStats", checkParser<parseArcStats>},
            {"BlockStat", checkParser<parseBlockStat, beforeUnknownLines>},
            {"CPUInfo", checkParser<cpuInfo>},
            {"CPUList", checkParser<cpuList, betweenBlanks>},
            {"DiskStats", checkParser<diskStats>},
            {"DrmFdinfo", checkParser<drmFdinfo>},
            {"MemInfo", checkParser<memInfo, twice>},
            {"MmStat", checkParser<parseMmStat, beforeUnknownLines>},
            {"MountInfo", checkParser<mountInfo>},
            {"OsReleaseName", checkParser<parseOsReleaseName>},
            {"PowerSupplyUevent", checkParser<powerSupplyUevent, twice>},
            {"Pressure", checkParser<parsePressure>},
            {"ProcStat", checkParser<procStat>},
            {"Swaps", checkParser<swaps, beforeUnknownLines>},
            {"UdevData", checkParser<parseUdevData>},
            {"Utab", checkParser<parseUtab>},
            {"VmStat", checkParser<parseVmStat>}};
}

}  // namespace norvane
