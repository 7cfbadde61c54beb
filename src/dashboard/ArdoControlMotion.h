#pragma once

#include "views/Animation.h"

namespace norvane {

// The spring in which the panels' own controls take their new places.
inline Animation ardoControlMotion() {
    return Animation::spring(0.3, 0.7);
}

}  // namespace norvane
