#pragma once

#include <array>
#include <cstdint>

namespace norvane {

// One bit each, by the numbers of AT-SPI.
enum class AtspiState : unsigned {
    active = 1,
    busy = 3,
    checked = 4,
    enabled = 8,
    expandable = 9,
    expanded = 10,
    focusable = 11,
    focused = 12,
    horizontal = 14,
    pressed = 20,
    sensitive = 24,
    showing = 25,
    // What it tells may be another thing at any time, without an event: it is not to be kept.
    transient = 28,
    visible = 30,
    indeterminate = 32,
    checkable = 41,
    readOnly = 43,
};

struct AtspiStateName {
    AtspiState state;
    const char* name;
};

// Those that come and go while an object is there, as events name them; the focus last.
inline constexpr std::array kChangingStates{
    AtspiStateName{AtspiState::active, "active"},       AtspiStateName{AtspiState::busy, "busy"},
    AtspiStateName{AtspiState::checked, "checked"},     AtspiStateName{AtspiState::enabled, "enabled"},
    AtspiStateName{AtspiState::sensitive, "sensitive"}, AtspiStateName{AtspiState::expanded, "expanded"},
    AtspiStateName{AtspiState::pressed, "pressed"},     AtspiStateName{AtspiState::showing, "showing"},
    AtspiStateName{AtspiState::focused, "focused"}};

class AtspiStates {
 public:
    void set(AtspiState state, bool isSet = true) {
        const std::uint64_t bit = std::uint64_t{1} << static_cast<unsigned>(state);
        bits_ = isSet ? bits_ | bit : bits_ & ~bit;
    }
    bool has(AtspiState state) const { return (bits_ >> static_cast<unsigned>(state) & 1) != 0; }
    // As messages carry them: the lower half first.
    std::array<std::uint32_t, 2> words() const {
        return {static_cast<std::uint32_t>(bits_), static_cast<std::uint32_t>(bits_ >> 32)};
    }

    bool operator==(const AtspiStates&) const = default;

 private:
    std::uint64_t bits_ = 0;
};

}  // namespace norvane
