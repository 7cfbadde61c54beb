#pragma once

#include <string>

#include "drawing/TextStyle.h"
#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// A text that wraps to the width it is given and is never shortened.
Element text(std::string text, const TextStyle& style, const Paint& paint = Ink::primary);

}  // namespace norvane
