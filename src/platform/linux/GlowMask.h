#pragma once

#include "platform/linux/CairoHandles.h"
#include "platform/linux/PixelRect.h"

namespace norvane {

// The coverage of a blurred silhouette. Where a silhouette has long straight sides the mask has only a part
// of them, which stands for any length: in between, all its columns, or rows, are the same.
struct GlowMask {
    // In pixels along one axis: the mask's ends, which are alone of their kind, and what is alike between
    // them, 0 where the mask stands for one length only.
    struct Axis {
        int end = 0;
        int alike = 0;
    };

    CairoSurface coverage;  // CAIRO_FORMAT_A8
    int margin = 0;         // from the mask's edges to the silhouette's box
    Axis across;
    Axis down;

    // Adds a share of it, of 256, to the coverage that `onto` has within `visible`. `onto` is a
    // CAIRO_FORMAT_A8 image whose corner is the visible rectangle's, `box` the silhouette's box.
    void addTo(cairo_surface_t* onto, const PixelRect& visible, const PixelRect& box, int share) const;
};

}  // namespace norvane
