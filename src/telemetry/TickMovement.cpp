#include "telemetry/TickMovement.h"

namespace norvane {

TickMovement movementBetween(const HostCPULoadInfo& before, const HostCPULoadInfo& now) {
    constexpr std::uint32_t kStepBack = std::uint32_t{1} << 31;
    const std::uint32_t user = now.user - before.user;
    const std::uint32_t system = now.system - before.system;
    const std::uint32_t idle = now.idle - before.idle;
    const std::uint32_t nice = now.nice - before.nice;
    if (user >= kStepBack || system >= kStepBack || idle >= kStepBack || nice >= kStepBack) return {};
    const double busy = static_cast<double>(user) + static_cast<double>(system) + static_cast<double>(nice);
    return {.busy = busy, .all = busy + static_cast<double>(idle)};
}

}  // namespace norvane
