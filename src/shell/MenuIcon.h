#pragma once

#include <string>

#include "telemetry/ComponentState.h"

namespace norvane {

// The image that stands in the panel for that state of the machine.
inline std::string menuIconName(ComponentState state) {
    return state == ComponentState::critical ? "MenuIconCritical" : "MenuIconNormal";
}

}  // namespace norvane
