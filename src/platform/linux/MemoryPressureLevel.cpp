#include "platform/linux/MemoryPressureLevel.h"

#include <algorithm>
#include <cstdint>

namespace norvane {

namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;

// Little memory in shares of the total, with a cap, since a share that is alarming on a small machine is
// plenty on a large one: 4 % up to 400 MiB is critical, 10 % up to 1.5 GiB a warning.
constexpr std::uint64_t kCriticalDivisor = 25;
constexpr std::uint64_t kCriticalCap = 400 * kMiB;
constexpr std::uint64_t kWarningDivisor = 10;
constexpr std::uint64_t kWarningCap = 1536 * kMiB;
// Free swap relieves whatever backs it; up to 10 % of it is as good as none.
constexpr std::uint64_t kSwapDivisor = 10;

// Hundredths of a percent. Some tasks stalled for 10 % of the time is where services are asked to give memory
// back ("Memory Pressure Handling in systemd"). All tasks stalled for 20 % takes half a minute of it, so a
// hiccup does not get there, and comes well before the shares at which out-of-memory daemons kill.
constexpr std::uint64_t kSomeWarning = 1000;
constexpr std::uint64_t kFullCritical = 2000;
// Stalls count for the whole machine only while half of its memory is taken: one process that runs into the
// limit of its own control group stalls, too, next to gigabytes of free memory.
constexpr std::uint64_t kGuardDivisor = 2;

// At most this share of the total; exact, since a count is at most total/n just when it is at most the
// quotient cut off.
bool isAtMost(std::uint64_t part, std::uint64_t whole, std::uint64_t divisor) {
    return part <= whole / divisor;
}

}  // namespace

int memoryPressureLevel(const MemoryFigures& memory, const std::optional<Pressure>& pressure) {
    const bool swapIsUsedUp = isAtMost(memory.swapFree, memory.swapTotal, kSwapDivisor);
    const bool stallsCount = pressure && isAtMost(memory.available, memory.total, kGuardDivisor);

    if (memory.available <= std::min(memory.total / kCriticalDivisor, kCriticalCap) && swapIsUsedUp) return 4;
    if (stallsCount && pressure->fullAvg10 >= kFullCritical) return 4;
    if (memory.available <= std::min(memory.total / kWarningDivisor, kWarningCap) && swapIsUsedUp) return 2;
    if (stallsCount && pressure->someAvg10 >= kSomeWarning) return 2;
    return 1;
}

}  // namespace norvane
