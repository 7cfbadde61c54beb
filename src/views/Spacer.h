#pragma once

#include "views/Element.h"

namespace norvane {

// Nothing, taking all the room that is left in its row.
Element spacer();

}  // namespace norvane
