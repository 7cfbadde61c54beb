#pragma once

#include <cairo.h>
#include <span>

#include "drawing/DisplayList.h"
#include "platform/linux/DrawingCaches.h"
#include "platform/linux/PixelPlacement.h"
#include "platform/linux/PixelRect.h"
#include "platform/linux/TextLayouts.h"

namespace norvane {

// Paints display lists into image surfaces. Main thread only. Whatever a list holds, the rest of the frame is
// painted: a command with a coordinate that is not a number is left out, huge shapes are cut at a distance.
class CairoPainter {
 public:
    // The layouts outlive the painter.
    explicit CairoPainter(TextLayouts& layouts) : layouts_(layouts) {}

    using Placement = PixelPlacement;

    // Clears the rectangles (pixels of the surface) and paints into them what the list has there. An item
    // touches nothing outside of its bounds, so that painting damage comes to the same as painting all (but
    // for the last bits of translucent pixels, which the image backend rounds by the length of its runs).
    void paint(cairo_surface_t* surface, const Placement& placement, const DisplayList& list,
               std::span<const PixelRect> damage);

    // What is kept from frame to frame; it may be cleared whenever nothing is being painted.
    DrawingCaches& caches() { return caches_; }

 private:
    TextLayouts& layouts_;
    DrawingCaches caches_;
};

}  // namespace norvane
