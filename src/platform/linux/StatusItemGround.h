#pragma once

#include <vector>

#include "drawing/DisplayList.h"

namespace norvane {

// What a status item stands on in somebody else's panel. Panels have any colour and any picture, while the
// item's contents are coloured for a light or a dark ground: so they bring their own.
//
// `isWhole` fills all of the size, in points, for a window that cannot be seen through; else it is a chip
// with round corners that lets a little of the panel through.
DisplayItem statusItemGround(Size size, bool isDark, bool isWhole);

}  // namespace norvane
