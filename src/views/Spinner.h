#pragma once

#include <string>

#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// Something is going on, nobody knows for how long: an arc that goes round for as long as it is shown. `name`
// says what is going on to those who do not see it; `side` is its width and height in points.
Element spinner(std::string name, double side = 16, const Paint& paint = Ink::secondary);

}  // namespace norvane
