#pragma once

#include <cairo.h>
#include <vector>

namespace norvane {

// A Gaussian blur, near enough: three running averages along each axis. The averages weigh the pixels at
// their two ends in part, so that any standard deviation can be had, and not only those of whole lengths.
class BoxBlur {
 public:
    // The standard deviation in pixels, at least 0.
    explicit BoxBlur(double deviation);

    // Pixels that the blur spreads over on every side. An image without so much empty room is blurred as if
    // it were surrounded by nothing.
    int reach() const { return isNone_ ? 0 : kPasses * (radius_ + 1); }

    // Blurs a CAIRO_FORMAT_A8 image in place.
    void blur(cairo_surface_t* image) const;

 private:
    static constexpr int kPasses = 3;

    void alongColumns(std::vector<float>& pixels, int width, int height) const;

    bool isNone_ = true;
    int radius_ = 0;   // whole pixels on either side of the middle one
    float edge_ = 0;   // the weight of the next one
    float share_ = 1;  // of the average, for a pixel of full weight
};

}  // namespace norvane
