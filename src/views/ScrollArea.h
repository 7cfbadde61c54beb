#pragma once

#include "views/Element.h"

namespace norvane {

// Shows its contents, or, where it has less height than they need, a part of them that moves by wheel and
// keys, with an indicator of where that is. It gives way to as little as `least` points of height.
Element scrollArea(Element contents, double least = 60);

}  // namespace norvane
