#pragma once

#include <functional>
#include <string>

#include "drawing/TextStyle.h"
#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// A text that leads somewhere when it is pressed; it is underlined while the pointer is over it.
Element link(std::string text, const TextStyle& style, std::function<void()> action,
             const Paint& paint = Ink::link);

}  // namespace norvane
