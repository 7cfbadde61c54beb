#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/HostPort.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/Sysctl.h"

namespace norvane {

// The processors of a large machine, each with a load that goes up and down in its own time, in front of a
// real kernel that answers for everything else.
class MadeProcessors final : public HostPort, public Sysctl {
 public:
    static constexpr std::size_t kCount = 64;

    // Both outlive this.
    MadeProcessors(HostPort& host, Sysctl& sysctl) : host_(host), sysctl_(sysctl) {}

    std::optional<HostCPULoadInfo> host_statistics(TickToken tick) override;
    std::optional<ProcessorInfo> host_processor_info(TickToken tick) override;
    std::optional<VMStatistics64> host_statistics64(TickToken tick, SwapCounters swapCounters) override {
        return host_.host_statistics64(tick, swapCounters);
    }
    std::uint64_t host_page_size() override { return host_.host_page_size(); }

    std::optional<std::int64_t> sysctlbyname(SysctlNumber name, TickToken tick) override;
    std::optional<std::string> sysctlbyname(SysctlText name) override { return sysctl_.sysctlbyname(name); }
    std::optional<XswUsage> sysctlbyname_vm_swapusage(TickToken tick) override {
        return sysctl_.sysctlbyname_vm_swapusage(tick);
    }

 private:
    struct Ticks {
        std::uint32_t busy = 0;
        std::uint32_t idle = 0;
    };
    // Since the machine started, a hundred a second.
    Ticks ticksOf(std::size_t processor) const;

    HostPort& host_;
    Sysctl& sysctl_;
    LinuxMonotonicClock clock_;
};

}  // namespace norvane
