#pragma once

#include <memory>
#include <vector>

#include "platform/linux/Accelerators.h"
#include "platform/linux/Batteries.h"
#include "platform/linux/DiskDrivers.h"
#include "platform/linux/SlowReading.h"
#include "platform/Registry.h"

namespace norvane {

// The devices under /sys and /proc as services of a registry.
class LinuxRegistry final : public Registry {
 public:
    // `acceleratorLane` is where the graphics processors are read. The references outlive this.
    LinuxRegistry(const RootFolder& root, const SystemCalls& calls, ReadBehind& readBehind,
                  std::unique_ptr<Lane> acceleratorLane, SlowReading<Batteries::Answer>& batteries);

    std::optional<std::vector<RegistryEntry>> IOServiceGetMatchingServices(RegistryService service,
                                                                           TickToken tick) override;

 private:
    DiskDrivers disks_;
    SlowReading<Accelerators::Answer> accelerators_;
    SlowReading<Batteries::Answer>& batteries_;
};

}  // namespace norvane
