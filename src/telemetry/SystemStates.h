#pragma once

#include "telemetry/ComponentState.h"

namespace norvane {

// The debounced states that every tick brings up to date.
struct SystemStates {
    ComponentState cpuState = ComponentState::normal;
    ComponentState memoryState = ComponentState::normal;
    ComponentState systemState = ComponentState::normal;

    bool operator==(const SystemStates&) const = default;
};

}  // namespace norvane
