#pragma once

#include <cairo.h>
#include <xcb/xcb.h>
#include <span>
#include <vector>

#include "platform/linux/PixelRect.h"

namespace norvane {

// How a popover's panel stands in its window: its corners, its outline, and its shadow where there can be
// one. The window may be larger than the panel and its shadow, while the panel grows or shrinks in it. In
// pixels of the window but where said otherwise.
struct PopoverShape {
    PixelRect panel;
    int width = 1;
    int height = 1;
    double scale = 1;  // pixels per point
    bool isTranslucent = false;
    bool isDark = false;

    // The room that the shadow needs on each side, in points.
    static constexpr double kShadowMargin = 30;
    // The same in pixels.
    static int shadowMargin(double scale) { return pixelsCovering(kShadowMargin, scale); }

    // The parts of the window that look otherwise than those of the other shape in a window of the same size,
    // whatever the panel shows.
    std::vector<PixelRect> differencesFrom(const PopoverShape& before) const;
    // Makes the panel of pixels that the content and its ground were painted into. The parts do not overlap.
    void finish(cairo_surface_t* image, std::span<const PixelRect> painted) const;
    // What the window consists of for the server: where no compositor blends them, the rounded corners are
    // left out; where one does, the shadow is, which lets the pointer through.
    std::vector<xcb_rectangle_t> rows() const;

    bool operator==(const PopoverShape&) const = default;

 private:
    double radius() const;
    // Whether the part certainly has nothing of the panel's edge.
    bool isAmidPanel(const PixelRect& part) const;
};

}  // namespace norvane
