#pragma once

#include "drawing/Rect.h"

namespace norvane {

// The window's frame moved sideways so that it keeps 8 points from the edges of what is visible of its
// screen. A window that is wider keeps the margin on the left.
Rect clampedToScreen(const Rect& frame, const Rect& visibleFrame);

}  // namespace norvane
