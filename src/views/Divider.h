#pragma once

#include "views/Element.h"

namespace norvane {

// A thin line across the width.
Element divider();

}  // namespace norvane
