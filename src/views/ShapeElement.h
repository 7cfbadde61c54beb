#pragma once

#include "views/Element.h"
#include "views/Outline.h"
#include "views/ShapeStyle.h"

namespace norvane {

// A shape. It takes all that it is offered, and nothing where nothing is said; it says nothing to those who
// cannot see.
Element shape(const Outline& outline, const ShapeStyle& style);

}  // namespace norvane
