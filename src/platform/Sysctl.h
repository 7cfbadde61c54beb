#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/SysctlNames.h"
#include "platform/TickToken.h"
#include "platform/XswUsage.h"

namespace norvane {

// Named kernel values. What changes from tick to tick (pressure, swap) is asked from the sampler's queue
// only; what the machine is made of (`hw.…`, `machdep.…`) is asked from any thread, at any time. The calls
// return soon and never throw; no value means that this kernel has no such value, or that the call failed
// this time.
class Sysctl {
 public:
    virtual ~Sysctl() = default;

    virtual std::optional<std::int64_t> sysctlbyname(SysctlNumber name, TickToken tick) = 0;
    // Any bytes, perhaps not UTF-8, without the terminating NUL.
    virtual std::optional<std::string> sysctlbyname(SysctlText name) = 0;
    // "vm.swapusage".
    virtual std::optional<XswUsage> sysctlbyname_vm_swapusage(TickToken tick) = 0;
};

}  // namespace norvane
