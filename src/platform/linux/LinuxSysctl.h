#pragma once

#include <functional>
#include <string>

#include "platform/linux/KernelFiles.h"
#include "platform/linux/ProcessorSet.h"
#include "platform/linux/RootFolder.h"
#include "platform/Sysctl.h"

namespace norvane {

// The named values, made from what Linux has in their place.
class LinuxSysctl final : public Sysctl {
 public:
    // `machine` is the kind of machine as uname(2) gives it. `hasBattery` tells at once, on any thread,
    // whether the machine is known to have one. The references outlive this.
    LinuxSysctl(RootFolder root, KernelFiles& files, ProcessorSet& processors, std::string machine,
                std::function<bool()> hasBattery);

    std::optional<std::int64_t> sysctlbyname(SysctlNumber name, TickToken tick) override;
    std::optional<std::string> sysctlbyname(SysctlText name) override;
    std::optional<XswUsage> sysctlbyname_vm_swapusage(TickToken tick) override;

 private:
    std::optional<std::int64_t> pressureLevel(TickToken tick);

    RootFolder root_;
    KernelFiles& files_;
    ProcessorSet& processors_;
    std::string machine_;
    std::function<bool()> hasBattery_;
};

}  // namespace norvane
