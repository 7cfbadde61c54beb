#include "platform/linux/LinuxProcessInfo.h"

#include <utility>

namespace norvane {

LinuxProcessInfo::LinuxProcessInfo(const RootFolder& root, KernelFiles& files, const SystemCalls& calls,
                                   ReadBehind& readBehind, std::unique_ptr<Lane> thermalLane,
                                   const std::atomic<bool>& isLowPowerModeEnabled)
    : files_(files),
      calls_(calls),
      thermal_(
          readBehind, std::move(thermalLane), nullptr,
          [zones = std::make_shared<ThermalZones>(root, calls.now)] { return zones->read(); }, {},
          ThermalZones::isDue),
      isLowPowerModeEnabled_(isLowPowerModeEnabled) {}

std::uint64_t LinuxProcessInfo::physicalMemory(TickToken tick) {
    // Not kept from tick to tick: a virtual machine's memory grows and shrinks while it runs.
    const auto& info = files_.memInfo(tick);
    if (info && info->memTotal.value_or(0) > 0) lastPhysicalMemory_ = *info->memTotal;
    return lastPhysicalMemory_ > 0 ? lastPhysicalMemory_ : calls_.memoryBytes();
}

int LinuxProcessInfo::thermalState(TickToken tick) {
    return thermal_.get(tick).level;
}

double LinuxProcessInfo::systemUptime() {
    const auto seconds = files_.uptime();
    return seconds ? *seconds : calls_.bootSeconds();
}

}  // namespace norvane
