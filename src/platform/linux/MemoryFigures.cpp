#include "platform/linux/MemoryFigures.h"

#include <algorithm>

#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

std::uint64_t droppableCache(const MemInfo& info) {
    // Shared memory is counted as cached, yet there is no file to drop it to.
    return saturatedDifference(saturatedSum(info.buffers.value_or(0), info.cached.value_or(0)),
                               info.shmem.value_or(0));
}

// Kernels before 3.14 don't estimate this themselves.
std::uint64_t estimatedAvailable(const MemInfo& info) {
    const std::uint64_t all =
        saturatedSum(saturatedSum(info.memFree.value_or(0), info.buffers.value_or(0)),
                     saturatedSum(info.cached.value_or(0), info.sReclaimable.value_or(0)));
    return saturatedDifference(all, info.shmem.value_or(0));
}

}  // namespace

std::optional<MemoryFigures> memoryFigures(const MemInfo& info, const std::optional<ArcStats>& arc,
                                           std::uint64_t zramBytes) {
    if (info.memTotal.value_or(0) == 0) return std::nullopt;
    const std::uint64_t zfsCache = arc ? saturatedDifference(arc->size, arc->cMin) : 0;

    MemoryFigures figures;
    figures.total = *info.memTotal;
    const std::uint64_t available = info.memAvailable ? *info.memAvailable : estimatedAvailable(info);
    figures.available = std::min(figures.total, saturatedSum(available, zfsCache));

    const std::uint64_t used = figures.used();
    figures.compressed = std::min(used, saturatedSum(info.zswap.value_or(0), zramBytes));
    figures.programs =
        std::min(saturatedSum(info.anonPages.value_or(0), info.shmem.value_or(0)), used - figures.compressed);
    figures.wired = used - figures.compressed - figures.programs;

    figures.fileCache = saturatedSum(droppableCache(info), zfsCache);
    figures.purgeable = info.kReclaimable ? *info.kReclaimable : info.sReclaimable.value_or(0);
    figures.swapTotal = info.swapTotal.value_or(0);
    figures.swapFree = info.swapFree.value_or(0);
    return figures;
}

}  // namespace norvane
