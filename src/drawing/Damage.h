#pragma once

#include <vector>

#include "drawing/DisplayList.h"
#include "drawing/Rect.h"

namespace norvane {

// Where two frames of one surface differ: rectangles in points, none overlapping another, that cover the old
// and the new bounds of every item that differs, those inside of groups by themselves. Painting `after`
// inside them over a picture of `before` gives the same picture as painting all of `after`. Items that
// exchanged their places in the order count as different; lists of different size differ everywhere.
std::vector<Rect> damageBetween(const DisplayList& before, const DisplayList& after);

}  // namespace norvane
