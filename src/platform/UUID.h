#pragma once

#include <array>
#include <cstdint>

namespace norvane {

// A universally unique identifier (RFC 4122).
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    bool operator==(const UUID&) const = default;
};

}  // namespace norvane
