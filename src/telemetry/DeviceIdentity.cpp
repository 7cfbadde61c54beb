#include "telemetry/DeviceIdentity.h"

#include <string>

namespace norvane {

bool DeviceIdentity::isAppleSilicon() {
    if (!cachedIsAppleSilicon_) {
        cachedIsAppleSilicon_ = sysctl_.sysctlbyname(SysctlNumber::hw_optional_arm64, TickToken::none()) == 1;
    }
    return *cachedIsAppleSilicon_;
}

DeviceModel DeviceIdentity::deviceModel() {
    if (!cachedDeviceModel_) cachedDeviceModel_ = detectDeviceModel();
    return *cachedDeviceModel_;
}

DeviceModel DeviceIdentity::detectDeviceModel() {
    const std::string text = sysctl_.sysctlbyname(SysctlText::hw_model).value_or("");
    return deviceModelOf(text.substr(0, text.find('\0')));
}

}  // namespace norvane
