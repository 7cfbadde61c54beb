#pragma once

#include <functional>
#include <string>

#include "views/Element.h"

namespace norvane {

// A plain button: its label, which tells its name to those who cannot see, and what it does. It acts when the
// pointer is pressed and released over it.
Element button(std::string name, Element label, std::function<void()> action);

}  // namespace norvane
