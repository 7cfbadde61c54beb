#include "platform/linux/BrandString.h"

#include <algorithm>
#include <string_view>

#include "platform/linux/CPUInfo.h"
#include "platform/linux/KernelText.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

namespace {

// A block of some 1.5 KiB for each processor.
constexpr std::size_t kCPUInfoLimit = 16 * 1024 * 1024;

// "Cortex-A76 + Cortex-A55", the largest first.
std::string armNames(std::vector<ArmPart> parts) {
    std::stable_sort(parts.begin(), parts.end(),
                     [](const ArmPart& a, const ArmPart& b) { return rankOf(a) < rankOf(b); });
    std::string names;
    for (const ArmPart& part : parts) {
        const std::string_view name = nameOf(part);
        if (name.empty()) continue;
        if (!names.empty()) names += " + ";
        names += name;
    }
    return names;
}

}  // namespace

std::optional<std::string> readBrandString(const RootFolder& root) {
    const auto text = root.read("/proc/cpuinfo", kCPUInfoLimit);
    CPUInfo info = parseCPUInfo(text ? *text : std::string_view());
    // Names the instruction set, and on 64-bit boards a wrong one.
    if (std::string_view(info.modelName).substr(0, 4) == "ARMv") info.modelName.clear();
    for (const std::string& name :
         {info.modelName, info.cpuModel, info.cpu, info.uarch, armNames(info.armParts), info.hardware}) {
        if (!name.empty()) return name;
    }

    for (const char* path :
         {"/sys/devices/soc0/machine", "/proc/device-tree/model", "/sys/class/dmi/id/product_name"}) {
        const auto file = root.read(path);
        if (!file) continue;
        // A text of the device tree ends with a NUL.
        std::string name = collapsed(std::string_view(*file).substr(0, file->find('\0')));
        if (!name.empty()) return name;
    }
    return std::nullopt;
}

}  // namespace norvane
