#pragma once

#include <cairo.h>
#include <vector>

#include "platform/linux/PixelRect.h"

namespace norvane {

// The shadow that a panel with rounded corners throws on what lies behind its window. It falls outside of the
// panel only: a translucent panel is not darkened by it. All lengths in pixels.
class SoftShadow {
 public:
    struct Form {
        PixelRect panel;  // within the image
        double radius = 0;
        double softness = 0;  // the standard deviation of the blur, more than 0
        double drop = 0;      // how far it is moved down
        double opacity = 0;
    };
    explicit SoftShadow(const Form& form);

    // Lays the shadow under what the image (CAIRO_FORMAT_ARGB32) holds there. The image may be in an error
    // state; then nothing happens.
    void paintUnder(cairo_surface_t* image, const PixelRect& part) const;

 private:
    Form form_;
    std::vector<double> opacities_;  // by the distance from the shadow's outline
};

}  // namespace norvane
