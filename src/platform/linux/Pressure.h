#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace norvane {

// The shares of the last seconds in which tasks stood still for want of a resource ("PSI - Pressure Stall
// Information" in the kernel's documentation), in hundredths of a percent.
struct Pressure {
    // Some task, or all tasks at once; a decaying mean over 10 s.
    std::uint64_t someAvg10 = 0;
    std::uint64_t fullAvg10 = 0;

    bool operator==(const Pressure&) const = default;
};

// None where there is no readable line `some`; a missing line `full` is 0.
std::optional<Pressure> parsePressure(std::string_view text);

}  // namespace norvane
