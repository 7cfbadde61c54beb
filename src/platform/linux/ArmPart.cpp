#include "platform/linux/ArmPart.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace norvane {

namespace {

struct KnownPart {
    ArmPart part;
    std::string_view name;
};

constexpr std::uint32_t kArm = 0x41;
constexpr std::uint32_t kQualcomm = 0x51;
constexpr std::uint32_t kApple = 0x61;

// From large to small, so that the order of a combination's names follows from the place in the table.
constexpr std::array kKnown{
    KnownPart{{kApple, 0x033}, "Avalanche-M2"},     KnownPart{{kApple, 0x023}, "Firestorm-M1"},
    KnownPart{{kApple, 0x025}, "Firestorm-M1-Pro"}, KnownPart{{kApple, 0x029}, "Firestorm-M1-Max"},
    KnownPart{{kApple, 0x032}, "Blizzard-M2"},      KnownPart{{kApple, 0x022}, "Icestorm-M1"},
    KnownPart{{kApple, 0x024}, "Icestorm-M1-Pro"},  KnownPart{{kApple, 0x028}, "Icestorm-M1-Max"},
    KnownPart{{kQualcomm, 0x001}, "Oryon"},         KnownPart{{kArm, 0xd4f}, "Neoverse-V2"},
    KnownPart{{kArm, 0xd40}, "Neoverse-V1"},        KnownPart{{kArm, 0xd49}, "Neoverse-N2"},
    KnownPart{{kArm, 0xd0c}, "Neoverse-N1"},        KnownPart{{kArm, 0xd82}, "Cortex-X4"},
    KnownPart{{kArm, 0xd4e}, "Cortex-X3"},          KnownPart{{kArm, 0xd48}, "Cortex-X2"},
    KnownPart{{kArm, 0xd44}, "Cortex-X1"},          KnownPart{{kArm, 0xd81}, "Cortex-A720"},
    KnownPart{{kArm, 0xd4d}, "Cortex-A715"},        KnownPart{{kArm, 0xd47}, "Cortex-A710"},
    KnownPart{{kArm, 0xd41}, "Cortex-A78"},         KnownPart{{kArm, 0xd0d}, "Cortex-A77"},
    KnownPart{{kArm, 0xd0b}, "Cortex-A76"},         KnownPart{{kArm, 0xd0a}, "Cortex-A75"},
    KnownPart{{kArm, 0xd09}, "Cortex-A73"},         KnownPart{{kArm, 0xd08}, "Cortex-A72"},
    KnownPart{{kArm, 0xd07}, "Cortex-A57"},         KnownPart{{kArm, 0xd80}, "Cortex-A520"},
    KnownPart{{kArm, 0xd46}, "Cortex-A510"},        KnownPart{{kArm, 0xd05}, "Cortex-A55"},
    KnownPart{{kArm, 0xd03}, "Cortex-A53"},         KnownPart{{kArm, 0xd04}, "Cortex-A35"},
    KnownPart{{kArm, 0xc0f}, "Cortex-A15"},         KnownPart{{kArm, 0xc09}, "Cortex-A9"},
    KnownPart{{kArm, 0xc07}, "Cortex-A7"},
};

auto findPart(ArmPart part) {
    return std::find_if(kKnown.begin(), kKnown.end(),
                        [part](const KnownPart& known) { return known.part == part; });
}

}  // namespace

std::string_view nameOf(ArmPart part) {
    const auto known = findPart(part);
    return known == kKnown.end() ? std::string_view() : known->name;
}

int rankOf(ArmPart part) {
    return static_cast<int>(std::distance(kKnown.begin(), findPart(part)));
}

}  // namespace norvane
