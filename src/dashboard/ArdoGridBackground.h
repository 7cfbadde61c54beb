#pragma once

#include "views/Element.h"

namespace norvane {

// Five dashed lines across the whole width, at every quarter of the height.
struct ArdoGridBackground {
    Element body() const;
};

}  // namespace norvane
