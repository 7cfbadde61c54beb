#include "platform/linux/LinuxRegistry.h"

#include <utility>

namespace norvane {

LinuxRegistry::LinuxRegistry(const RootFolder& root, const SystemCalls& calls, ReadBehind& readBehind,
                             std::unique_ptr<Lane> acceleratorLane, SlowReading<Batteries::Answer>& batteries)
    : disks_(root),
      accelerators_(
          readBehind, std::move(acceleratorLane), &TickReads::accelerators,
          [accelerators = std::make_shared<Accelerators>(root, calls)] { return accelerators->read(); }, {},
          &Accelerators::isDue),
      batteries_(batteries) {}

std::optional<std::vector<RegistryEntry>> LinuxRegistry::IOServiceGetMatchingServices(RegistryService service,
                                                                                      TickToken tick) {
    switch (service) {
        case RegistryService::IOBlockStorageDriver:
            return disks_.match();
        case RegistryService::IOAccelerator:
            return accelerators_.get(tick).services;
        case RegistryService::AppleSmartBattery:
            return batteries_.get(tick).services;
    }
    return std::nullopt;
}

}  // namespace norvane
