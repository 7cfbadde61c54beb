#include "platform/linux/IdleResidency.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace norvane {

std::optional<double> IdleResidency::busyPercent(std::uint64_t idleMilliseconds, MonotonicInstant at) {
    const auto last = std::exchange(last_, Reading{idleMilliseconds, at});
    if (!last || idleMilliseconds == 0 || idleMilliseconds < last->idleMilliseconds || at <= last->at) {
        return std::nullopt;
    }
    const auto idle = static_cast<double>(idleMilliseconds - last->idleMilliseconds);
    const double elapsed = std::chrono::duration<double, std::milli>(at - last->at).count();
    return std::clamp((1 - idle / elapsed) * 100, 0.0, 100.0);
}

}  // namespace norvane
