#include "shell/ScreenClamp.h"

namespace norvane {

Rect clampedToScreen(const Rect& frame, const Rect& visibleFrame) {
    constexpr double kMargin = 8.0;
    Rect clamped = frame;
    if (clamped.maxX() > visibleFrame.maxX())
        clamped.origin.x -= clamped.maxX() - visibleFrame.maxX() + kMargin;
    if (clamped.minX() < visibleFrame.minX()) clamped.origin.x = visibleFrame.minX() + kMargin;
    return clamped;
}

}  // namespace norvane
