#pragma once

#include <optional>

namespace norvane {

// How much energy the machine is using. Ordered: a later state is a higher one.
enum class ImpactState : int {
    low = 0,
    moderate = 1,
    high = 2,
};

// No value for a raw value out of range.
constexpr std::optional<ImpactState> impactStateFromRaw(int rawValue) {
    if (rawValue < 0 || rawValue > 2) return std::nullopt;
    return static_cast<ImpactState>(rawValue);
}

}  // namespace norvane
