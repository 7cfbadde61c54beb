#pragma once

#include "views/Element.h"

namespace norvane {

// Takes what is left over in the direction of the stack that it is in, at least so many points.
Element spacer(double least = 0);

}  // namespace norvane
