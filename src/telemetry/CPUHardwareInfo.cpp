#include "telemetry/CPUHardwareInfo.h"

#include <algorithm>

#include "platform/Utf8.h"

namespace norvane {

CPUHardwareInfo::CPUHardwareInfo(Sysctl& sysctl) {
    const auto cores = [&sysctl](SysctlNumber name) {
        return std::max<std::int64_t>(sysctl.sysctlbyname(name, TickToken::none()).value_or(0), 0);
    };
    performanceCores_ = cores(SysctlNumber::hw_perflevel0_physicalcpu);
    efficiencyCores_ = cores(SysctlNumber::hw_perflevel1_physicalcpu);

    std::string brand = sysctl.sysctlbyname(SysctlText::machdep_cpu_brand_string).value_or("");
    brand.resize(std::min(brand.size(), brand.find('\0')));
    chipName_ = repairedUtf8(brand);
}

}  // namespace norvane
