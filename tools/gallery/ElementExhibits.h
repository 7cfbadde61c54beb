#pragma once

#include "gallery/Exhibit.h"

namespace norvane::gallery {

DisplayList stacks(Stage& stage);
DisplayList modifiers(Stage& stage);
DisplayList shapes(Stage& stage);
DisplayList shadows(Stage& stage);
DisplayList scrolled(Stage& stage);
// Some come, some go.
DisplayList transitionsHalfWay(Stage& stage);

}  // namespace norvane::gallery
