#pragma once

#include <span>
#include <string_view>

#include "scenario/Json.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// A field of a snapshot by its name.
struct SnapshotField {
    std::string_view name;
    Json (*shown)(const SystemSnapshot& snapshot);
};

// All of them, in their order.
std::span<const SnapshotField> snapshotFields();

}  // namespace norvane
