#pragma once

#include <optional>

#include "platform/Sysctl.h"
#include "telemetry/DeviceModel.h"

namespace norvane {

// What the machine is. Each answer is asked of it on the first request and then kept, also where the call
// failed. Belongs to the tick.
class DeviceIdentity {
 public:
    explicit DeviceIdentity(Sysctl& sysctl) : sysctl_(sysctl) {}

    bool isAppleSilicon();
    DeviceModel deviceModel();

 private:
    DeviceModel detectDeviceModel();

    Sysctl& sysctl_;
    std::optional<bool> cachedIsAppleSilicon_;
    std::optional<DeviceModel> cachedDeviceModel_;
};

}  // namespace norvane
