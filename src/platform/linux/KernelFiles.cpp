#include "platform/linux/KernelFiles.h"

#include <algorithm>
#include <string>

#include "platform/linux/ArcStats.h"
#include "platform/linux/BlockStat.h"
#include "platform/linux/KernelText.h"
#include "platform/linux/MmStat.h"
#include "platform/linux/Saturated.h"
#include "platform/linux/VmStat.h"

namespace norvane {

namespace {

// Most machines have no ZFS and never will. Looking for its file in vain once a minute of ticks is nothing,
// and a pool that is imported later is still noticed.
constexpr unsigned kArcStatsMisses = 59;

constexpr std::size_t kLargeText = 1024 * 1024;
constexpr std::size_t kSmallText = 64 * 1024;

}  // namespace

KernelFiles::KernelFiles(const RootFolder& root, std::uint64_t pageBytes)
    : root_(root),
      procStatFile_(root, "/proc/stat", kProcStatLimit),
      memInfoFile_(root, "/proc/meminfo", kSmallText),
      vmStatFile_(root, "/proc/vmstat", kLargeText),
      swapsFile_(root, "/proc/swaps", kLargeText),
      pressureFile_(root, "/proc/pressure/memory", kSmallText),
      arcStatsFile_(root, "/proc/spl/kstat/zfs/arcstats", kLargeText, kArcStatsMisses),
      uptimeFile_(root, "/proc/uptime", kSmallText),
      traffic_(pageBytes) {}

std::optional<std::string_view> KernelFiles::procStat(TickToken tick) {
    return procStat_.get(tick, [this](auto& text) { text = procStatFile_.read(); });
}

const std::optional<MemInfo>& KernelFiles::memInfo(TickToken tick) {
    return memInfo_.get(tick, [this](auto& info) {
        const auto text = memInfoFile_.read();
        info = text ? std::optional(parseMemInfo(*text)) : std::nullopt;
    });
}

const std::optional<MemoryFigures>& KernelFiles::memoryFigures(TickToken tick) {
    return memoryFigures_.get(tick, [this, tick](auto& figures) {
        figures.reset();
        const auto& info = memInfo(tick);
        if (!info) return;

        std::uint64_t zramBytes = 0;
        for (Zram& device : zramDevices(tick)) {
            const auto text = device.mmStat.read();
            const auto used = text ? parseMmStat(*text) : std::nullopt;
            zramBytes = saturatedSum(zramBytes, used.value_or(0));
        }
        const auto arcText = arcStatsFile_.read();
        figures = norvane::memoryFigures(*info, arcText ? parseArcStats(*arcText) : std::nullopt, zramBytes);
    });
}

const std::optional<Pressure>& KernelFiles::memoryPressure(TickToken tick) {
    return pressure_.get(tick, [this](auto& pressure) {
        const auto text = pressureFile_.read();
        pressure = text ? parsePressure(*text) : std::nullopt;
    });
}

const std::optional<std::vector<SwapArea>>& KernelFiles::swaps(TickToken tick) {
    return swaps_.get(tick, [this](auto& areas) {
        if (areas) spareAreas_.swap(*areas);
        areas.reset();
        const auto text = swapsFile_.read();
        if (text && parseSwaps(*text, spareAreas_)) areas.emplace().swap(spareAreas_);
    });
}

std::vector<KernelFiles::Zram>& KernelFiles::zramDevices(TickToken tick) {
    const auto& areas = swaps(tick);
    const auto isSwappedTo = [&areas](unsigned number) {
        return areas && std::any_of(areas->begin(), areas->end(),
                                    [number](const SwapArea& area) { return area.zram == number; });
    };
    zram_.erase(std::remove_if(zram_.begin(), zram_.end(),
                               [&](const Zram& device) { return !isSwappedTo(device.number); }),
                zram_.end());
    if (!areas) return zram_;
    for (const SwapArea& area : *areas) {
        if (!area.zram) continue;
        const bool isKnown = std::any_of(zram_.begin(), zram_.end(),
                                         [&](const Zram& device) { return device.number == *area.zram; });
        if (isKnown) continue;
        const std::string folder = "/sys/block/zram" + std::to_string(*area.zram);
        zram_.push_back(
            {*area.zram, KeptFile(root_, folder + "/mm_stat"), KeptFile(root_, folder + "/stat")});
    }
    return zram_;
}

const SwapTraffic& KernelFiles::swapTraffic(TickToken tick) {
    trafficRead_.get(tick, [this, tick](bool&) {
        const auto text = vmStatFile_.read();
        const auto vmStat = text ? parseVmStat(*text) : std::nullopt;
        if (!vmStat) return;
        trafficDevices_.clear();
        for (Zram& device : zramDevices(tick)) {
            const auto deviceText = device.stat.read();
            const auto stat = deviceText ? parseBlockStat(*deviceText) : std::nullopt;
            if (stat) trafficDevices_.push_back({device.number, *stat});
        }
        traffic_.feed(*vmStat, trafficDevices_);
    });
    return traffic_;
}

std::optional<double> KernelFiles::uptime() {
    const auto text = uptimeFile_.read();
    if (!text) return std::nullopt;
    std::string_view line = *text;
    const auto hundredths = parseHundredths(takeWord(line));
    if (!hundredths) return std::nullopt;
    return static_cast<double>(*hundredths) / 100.0;
}

}  // namespace norvane
