#pragma once

#include <cstdint>

#include "platform/TickReads.h"

namespace norvane {

// Handed out by a tick to everything that it asks: answers that rest on the same kernel text are taken from
// one reading of it. A different token means a new reading, however soon it comes.
struct TickToken {
    std::uint64_t value = 0;
    TickReads reads{};

    // Belongs to no tick: always a new reading.
    static constexpr TickToken none() { return {}; }

    // The same tick.
    bool operator==(const TickToken& other) const { return value == other.value; }
};

}  // namespace norvane
