#pragma once

#include <map>
#include <string>

#include "platform/scripted/ScriptedAnswer.h"
#include "platform/Sysctl.h"

namespace norvane {

// A machine of four like processors without pressure and swap, until told otherwise.
class ScriptedSysctl final : public Sysctl {
 public:
    ScriptedSysctl() {
        number(SysctlNumber::hw_logicalcpu).always(4);
        number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(1);
        text(SysctlText::machdep_cpu_brand_string).always("Scripted Processor");
    }

    std::optional<std::int64_t> sysctlbyname(SysctlNumber name, TickToken) override {
        return number(name).ask();
    }
    std::optional<std::string> sysctlbyname(SysctlText name) override { return text(name).ask(); }
    std::optional<XswUsage> sysctlbyname_vm_swapusage(TickToken) override { return swapUsage.ask(); }

    // The answer to a name; a name that was never scripted fails.
    ScriptedAnswer<std::optional<std::int64_t>>& number(SysctlNumber name) {
        return numbers_.try_emplace(name, std::nullopt).first->second;
    }
    ScriptedAnswer<std::optional<std::string>>& text(SysctlText name) {
        return texts_.try_emplace(name, std::nullopt).first->second;
    }
    ScriptedAnswer<std::optional<XswUsage>> swapUsage{XswUsage{}};

 private:
    std::map<SysctlNumber, ScriptedAnswer<std::optional<std::int64_t>>> numbers_;
    std::map<SysctlText, ScriptedAnswer<std::optional<std::string>>> texts_;
};

}  // namespace norvane
