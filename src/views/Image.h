#pragma once

#include <string>

#include "drawing/Size.h"
#include "views/Element.h"

namespace norvane {

// The image of that name, scaled to that size. It says nothing to those who cannot see.
Element image(std::string name, Size size);

}  // namespace norvane
