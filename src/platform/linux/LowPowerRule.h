#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace norvane {

// What is known of one of the names that a power profile service goes by.
enum class ProfileService {
    // Asked, and not heard of yet.
    unknown,
    // Nobody owns the name.
    absent,
    // Somebody does, but tells no profile.
    silent,
    powerSaver,
    otherProfile,
};

// The property `ActiveProfile` of such a service.
ProfileService serviceTelling(std::string_view activeProfile);

// What is known of the profile that the firmware runs.
enum class FirmwareProfile { unknown, absent, lowPower, otherProfile };

// The text of a platform profile file ("Platform Profile Selection", kernel documentation). What saves power
// by keeping still counts, as it does for the services that set it.
FirmwareProfile firmwareTelling(std::string_view profile);

// The firmware has its say only where there is no service at all: one that is there may set it to anything.
bool isFirmwareAsked(const std::array<ProfileService, 2>& services);

// Whether the machine is to save power, from the services in the order in which they count. No value while it
// cannot be told yet: what was true stays true.
std::optional<bool> isLowPower(const std::array<ProfileService, 2>& services, FirmwareProfile firmware);

}  // namespace norvane
