#pragma once

#include <string_view>

namespace norvane {

// Named kernel values that are numbers.
enum class SysctlNumber {
    hw_perflevel0_physicalcpu,
    hw_perflevel1_physicalcpu,
    hw_perflevel0_logicalcpu,
    hw_perflevel1_logicalcpu,
    hw_logicalcpu,
    hw_optional_arm64,
    kern_memorystatus_vm_pressure_level,
};

// Named kernel values that are texts.
enum class SysctlText {
    hw_model,
    machdep_cpu_brand_string,
};

// The name as it is written: "hw.perflevel0.physicalcpu".
std::string_view nameOf(SysctlNumber name);
std::string_view nameOf(SysctlText name);

}  // namespace norvane
