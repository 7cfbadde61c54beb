#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace norvane {

// A universally unique identifier (RFC 4122).
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    bool operator==(const UUID&) const = default;
};

// "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
std::string uuidString(const UUID& uuid);

}  // namespace norvane
