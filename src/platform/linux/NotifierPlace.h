#pragma once

#include "drawing/Rect.h"

namespace norvane {

// The width of a notifier item, and its height where nothing tells of a panel, in points.
inline constexpr double kNotifierSide = 22;

// About where a notifier item is, of which a panel tells no more than the place of a click on it: around the
// click, from the monitor's edge to the free area where a panel at the top or the bottom was clicked on. In
// points of the screen; `free` is what panels leave free of the monitor.
Rect notifierFrame(Point click, const Rect& monitor, const Rect& free);

// Where it probably is before the first click: at the right end of the panel at the top, or of the one at the
// bottom; in the upper right corner without either.
Rect notifierFrameBeforeClicks(const Rect& monitor, const Rect& free);

}  // namespace norvane
