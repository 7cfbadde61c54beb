#pragma once

#include <variant>

#include "drawing/Arc.h"
#include "drawing/PlacedPath.h"
#include "drawing/RoundedRect.h"

namespace norvane {

// Anything that can be filled or stroked. A circle is an arc of a whole turn or more, or a rounded square.
using Shape = std::variant<RoundedRect, Arc, PlacedPath>;

// The smallest rectangle around the shape's outline, without its line's width.
Rect boundsOf(const Shape& shape);

}  // namespace norvane
