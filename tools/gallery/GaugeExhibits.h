#pragma once

#include "gallery/Exhibit.h"

namespace norvane::gallery {

// Each with its breath let out, and held.
DisplayList neonBarsDim(Stage& stage);
DisplayList neonBarsBright(Stage& stage);
DisplayList ringsDim(Stage& stage);
DisplayList ringsBright(Stage& stage);
DisplayList velocityBars(Stage& stage);
// Shortly after they came up.
DisplayList gaugesGrowing(Stage& stage);
// Springs at their furthest, which is at different times.
DisplayList springsOverTheEnd(Stage& stage);

}  // namespace norvane::gallery
