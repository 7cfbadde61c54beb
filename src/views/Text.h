#pragma once

#include <string>

#include "drawing/TextStyle.h"
#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// A text, wrapped where it is wider than what it is offered, as high as it then is.
Element text(std::string text, const TextStyle& style, const Paint& paint = Ink::primary);

}  // namespace norvane
