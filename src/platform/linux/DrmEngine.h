#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace norvane {

// What one client has had an engine of a graphics device do since the client began. A kernel counts time or
// cycles, hardly ever both.
struct DrmEngine {
    std::optional<std::uint64_t> busyNanoseconds;
    std::optional<std::uint64_t> busyCycles;
    // The cycles that passed meanwhile, busy or not.
    std::optional<std::uint64_t> totalCycles;
    // How many alike engines of this name there are, each of which may be busy all the time. Above 0.
    std::uint64_t capacity = 1;

    // Whether a share can be drawn from it.
    bool isMeasured() const { return busyNanoseconds || (busyCycles && totalCycles); }

    bool operator==(const DrmEngine&) const = default;
};

// By the engine's name, such as "render" or "video".
using DrmEngines = std::map<std::string, DrmEngine>;

// The clients of one device, by what tells them apart.
using DrmClientEngines = std::map<std::string, DrmEngines>;

}  // namespace norvane
