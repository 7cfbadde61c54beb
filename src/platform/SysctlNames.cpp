#include "platform/SysctlNames.h"

namespace norvane {

std::string_view nameOf(SysctlNumber name) {
    switch (name) {
        case SysctlNumber::hw_perflevel0_physicalcpu:
            return "hw.perflevel0.physicalcpu";
        case SysctlNumber::hw_perflevel1_physicalcpu:
            return "hw.perflevel1.physicalcpu";
        case SysctlNumber::hw_perflevel0_logicalcpu:
            return "hw.perflevel0.logicalcpu";
        case SysctlNumber::hw_perflevel1_logicalcpu:
            return "hw.perflevel1.logicalcpu";
        case SysctlNumber::hw_logicalcpu:
            return "hw.logicalcpu";
        case SysctlNumber::hw_optional_arm64:
            return "hw.optional.arm64";
        case SysctlNumber::kern_memorystatus_vm_pressure_level:
            return "kern.memorystatus_vm_pressure_level";
    }
    return {};
}

std::string_view nameOf(SysctlText name) {
    switch (name) {
        case SysctlText::hw_model:
            return "hw.model";
        case SysctlText::machdep_cpu_brand_string:
            return "machdep.cpu.brand_string";
    }
    return {};
}

}  // namespace norvane
