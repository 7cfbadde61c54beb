#pragma once

#include <cstdint>
#include <string_view>

namespace norvane {

// A processor design as ARM processors identify it (their register MIDR_EL1): who made it, and which it is.
struct ArmPart {
    std::uint32_t implementer = 0;
    std::uint32_t part = 0;

    bool operator==(const ArmPart&) const = default;
};

// What it is sold as; empty where it is not known.
std::string_view nameOf(ArmPart part);

// Designs that are made to be combined on one chip, from the largest, which has 0, on.
int rankOf(ArmPart part);

}  // namespace norvane
