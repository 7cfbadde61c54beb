#pragma once

#include <optional>

namespace norvane {

// Whether a component is under critical load. Ordered: a later state is a worse one.
enum class ComponentState : int {
    normal = 0,
    critical = 1,
};

// No value for a raw value out of range.
constexpr std::optional<ComponentState> componentStateFromRaw(int rawValue) {
    if (rawValue < 0 || rawValue > 1) return std::nullopt;
    return static_cast<ComponentState>(rawValue);
}

}  // namespace norvane
