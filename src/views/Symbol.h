#pragma once

#include <string>

#include "drawing/Font.h"
#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// The symbol of that name beside text of that font: a square as high as the font's lines, in one colour. It
// says nothing to those who cannot see; a name that no symbol has takes its room and shows nothing.
Element symbol(std::string name, const Font& font, const Paint& paint = Ink::primary);

}  // namespace norvane
