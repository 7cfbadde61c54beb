#pragma once

#include <cairo.h>
#include <span>

#include "drawing/DisplayList.h"
#include "platform/linux/PixelRect.h"
#include "platform/linux/TextLayouts.h"

namespace norvane {

// Paints display lists into image surfaces. Main thread only. Whatever a list holds, the rest of the frame is
// painted: a command with a coordinate that is not a number is left out, huge shapes are cut at a distance.
class CairoPainter {
 public:
    // The layouts outlive the painter.
    explicit CairoPainter(TextLayouts& layouts) : layouts_(layouts) {}

    // Where on the surface a list is painted.
    struct Placement {
        double scale = 1;  // pixels per point
        int x = 0;         // pixels from the surface's corner to the list's
        int y = 0;
    };

    // Clears the rectangles (pixels of the surface) and paints into them what the list has there. An item
    // touches nothing outside of its bounds, so that painting damage comes to the same as painting all (but
    // for the last bit of a translucent pixel, which the image backend rounds by the length of its runs).
    void paint(cairo_surface_t* surface, const Placement& placement, const DisplayList& list,
               std::span<const PixelRect> damage);

 private:
    TextLayouts& layouts_;
};

}  // namespace norvane
