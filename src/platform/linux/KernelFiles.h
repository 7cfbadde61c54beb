#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/KeptFile.h"
#include "platform/linux/MemInfo.h"
#include "platform/linux/MemoryFigures.h"
#include "platform/linux/PerTick.h"
#include "platform/linux/Pressure.h"
#include "platform/linux/Swaps.h"
#include "platform/linux/SwapTraffic.h"
#include "platform/TickToken.h"

namespace norvane {

// The files under /proc and /sys that ticks read, each read once in a tick however many operations rest on
// it. All of them answer at once; what may wait for a device is read elsewhere. Sampler's queue only. No
// value means that the file is missing or cannot be read this time.
class KernelFiles {
 public:
    // The interrupts of a machine with many processors make /proc/stat megabytes long.
    static constexpr std::size_t kProcStatLimit = 16 * 1024 * 1024;

    KernelFiles(const RootFolder& root, std::uint64_t pageBytes);

    // The text of /proc/stat, valid until the next reading of it.
    std::optional<std::string_view> procStat(TickToken tick);

    const std::optional<MemInfo>& memInfo(TickToken tick);
    // From /proc/meminfo, with the zram devices that are swapped to and the cache of ZFS.
    const std::optional<MemoryFigures>& memoryFigures(TickToken tick);
    const std::optional<Pressure>& memoryPressure(TickToken tick);

    // The areas of /proc/swaps.
    const std::optional<std::vector<SwapArea>>& swaps(TickToken tick);
    // Reads /proc/vmstat, which costs as much as all others together. Keeps its last sums where that fails.
    const SwapTraffic& swapTraffic(TickToken tick);

    // Seconds from /proc/uptime, read at each call.
    std::optional<double> uptime();

 private:
    struct Zram {
        unsigned number;
        KeptFile mmStat;
        KeptFile stat;
    };
    // Follows what is swapped to in `tick`.
    std::vector<Zram>& zramDevices(TickToken tick);

    RootFolder root_;
    KeptFile procStatFile_;
    KeptFile memInfoFile_;
    KeptFile vmStatFile_;
    KeptFile swapsFile_;
    KeptFile pressureFile_;
    KeptFile arcStatsFile_;
    KeptFile uptimeFile_;
    std::vector<Zram> zram_;

    PerTick<std::optional<std::string_view>> procStat_;
    PerTick<std::optional<MemInfo>> memInfo_;
    PerTick<std::optional<MemoryFigures>> memoryFigures_;
    PerTick<std::optional<Pressure>> pressure_;
    PerTick<std::optional<std::vector<SwapArea>>> swaps_;
    std::vector<SwapArea> spareAreas_;  // keeps the memory of `swaps_` while there are no areas to give
    SwapTraffic traffic_;
    std::vector<SwapTraffic::Device> trafficDevices_;
    PerTick<bool> trafficRead_;
};

}  // namespace norvane
