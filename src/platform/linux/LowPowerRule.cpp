#include "platform/linux/LowPowerRule.h"

#include <algorithm>

#include "platform/linux/KernelText.h"

namespace norvane {

ProfileService serviceTelling(std::string_view activeProfile) {
    return activeProfile == "power-saver" ? ProfileService::powerSaver : ProfileService::otherProfile;
}

FirmwareProfile firmwareTelling(std::string_view profile) {
    const std::string_view word = trimmed(profile);
    return word == "low-power" || word == "quiet" ? FirmwareProfile::lowPower : FirmwareProfile::otherProfile;
}

bool isFirmwareAsked(const std::array<ProfileService, 2>& services) {
    return std::all_of(services.begin(), services.end(),
                       [](ProfileService service) { return service == ProfileService::absent; });
}

std::optional<bool> isLowPower(const std::array<ProfileService, 2>& services, FirmwareProfile firmware) {
    for (const ProfileService service : services) {
        switch (service) {
            case ProfileService::unknown:
                return std::nullopt;
            case ProfileService::absent:
            case ProfileService::silent:
                break;
            case ProfileService::powerSaver:
                return true;
            case ProfileService::otherProfile:
                return false;
        }
    }
    if (!isFirmwareAsked(services)) return false;
    if (firmware == FirmwareProfile::unknown) return std::nullopt;
    return firmware == FirmwareProfile::lowPower;
}

}  // namespace norvane
