#include "platform/linux/LinuxSysctl.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/linux/BrandString.h"
#include "platform/linux/DeviceModel.h"
#include "platform/linux/MemoryPressureLevel.h"
#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

// "armv8l" is what a 32-bit program sees on a 64-bit kernel.
bool isArm64(std::string_view machine) {
    constexpr std::array<std::string_view, 3> kNames{"aarch64", "aarch64_be", "armv8l"};
    return std::find(kNames.begin(), kNames.end(), machine) != kNames.end();
}

}  // namespace

LinuxSysctl::LinuxSysctl(RootFolder root, KernelFiles& files, ProcessorSet& processors, std::string machine,
                         std::function<bool()> hasBattery)
    : root_(std::move(root)),
      files_(files),
      processors_(processors),
      machine_(std::move(machine)),
      hasBattery_(std::move(hasBattery)) {}

std::optional<std::int64_t> LinuxSysctl::sysctlbyname(SysctlNumber name, TickToken tick) {
    if (name == SysctlNumber::kern_memorystatus_vm_pressure_level) return pressureLevel(tick);
    if (name == SysctlNumber::hw_optional_arm64) {
        return isArm64(machine_) ? std::optional<std::int64_t>(1) : std::nullopt;
    }
    const CPUTopology* const topology = processors_.topology();
    if (topology == nullptr) return std::nullopt;
    if (name == SysctlNumber::hw_logicalcpu) return static_cast<std::int64_t>(topology->order.size());
    if (!topology->levels) return std::nullopt;
    switch (name) {
        case SysctlNumber::hw_perflevel0_physicalcpu:
            return topology->levels->performance.physical;
        case SysctlNumber::hw_perflevel0_logicalcpu:
            return topology->levels->performance.logical;
        case SysctlNumber::hw_perflevel1_physicalcpu:
            return topology->levels->efficiency.physical;
        case SysctlNumber::hw_perflevel1_logicalcpu:
            return topology->levels->efficiency.logical;
        default:
            return std::nullopt;
    }
}

std::optional<std::string> LinuxSysctl::sysctlbyname(SysctlText name) {
    switch (name) {
        case SysctlText::hw_model:
            return readDeviceModel(root_, hasBattery_);
        case SysctlText::machdep_cpu_brand_string:
            return readBrandString(root_);
    }
    return std::nullopt;
}

std::optional<XswUsage> LinuxSysctl::sysctlbyname_vm_swapusage(TickToken tick) {
    const auto& areas = files_.swaps(tick);
    if (!areas) return std::nullopt;
    XswUsage usage;
    for (const SwapArea& area : *areas) {
        if (area.zram) continue;
        usage.xsu_total = saturatedSum(usage.xsu_total, area.sizeBytes);
        usage.xsu_used = saturatedSum(usage.xsu_used, area.usedBytes);
    }
    // Pages in zswap have slots on the device, yet are in memory.
    const auto& info = files_.memInfo(tick);
    const std::uint64_t zswapped = info ? info->zswapped.value_or(0) : 0;
    usage.xsu_used = std::min(saturatedDifference(usage.xsu_used, zswapped), usage.xsu_total);
    usage.xsu_avail = usage.xsu_total - usage.xsu_used;
    return usage;
}

std::optional<std::int64_t> LinuxSysctl::pressureLevel(TickToken tick) {
    const auto& figures = files_.memoryFigures(tick);
    if (!figures) return std::nullopt;
    return memoryPressureLevel(*figures, files_.memoryPressure(tick));
}

}  // namespace norvane
