#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/linux/CairoPainter.h"

namespace norvane {

// An image in memory that lists are painted on, and its pixels: premultiplied, 0xAARRGGBB.
class PaintedImage {
 public:
    // All of the list, on an image of its size.
    PaintedImage(CairoPainter& painter, const DisplayList& list, double scale = 1)
        : painter_(painter), scale_(scale), bounds_(pixelsCovering(Rect{{}, list.size}, scale)) {
        paint(list, {bounds_});
    }

    void paint(const DisplayList& list, const std::vector<PixelRect>& damage) {
        painter_.paint(surface_.get(), {scale_, 0, 0}, list, damage);
    }

    int width() const { return bounds_.width; }
    int height() const { return bounds_.height; }
    const PixelRect& bounds() const { return bounds_; }
    std::uint32_t at(int x, int y) const {
        cairo_surface_flush(surface_.get());
        const auto* const pixels = cairo_image_surface_get_data(surface_.get());
        const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface_.get());
        return reinterpret_cast<const std::uint32_t*>(pixels + stride * y)[x];
    }
    int alphaAt(int x, int y) const { return static_cast<int>(at(x, y) >> 24); }
    int redAt(int x, int y) const { return static_cast<int>(at(x, y) >> 16 & 0xFF); }

    // Calls f(x, y) for each pixel.
    template <typename Function>
    void forEach(Function f) const {
        for (int y = 0; y < height(); ++y) {
            for (int x = 0; x < width(); ++x)
                f(x, y);
        }
    }
    int count(std::uint32_t pixel) const {
        int found = 0;
        forEach([&](int x, int y) { found += at(x, y) == pixel ? 1 : 0; });
        return found;
    }

    struct Difference {
        int largest = 0;  // of any component of any pixel
        int pixels = 0;   // with a component that differs by more than rounding
    };
    static Difference between(const PaintedImage& one, const PaintedImage& other, int rounding = 0) {
        Difference difference;
        one.forEach([&](int x, int y) {
            const int apart = largestBetween(one.at(x, y), other.at(x, y));
            difference.largest = std::max(difference.largest, apart);
            difference.pixels += apart > rounding ? 1 : 0;
        });
        return difference;
    }
    // Of any component of two pixels.
    static int largestBetween(std::uint32_t one, std::uint32_t other) {
        int largest = 0;
        for (unsigned shift = 0; one != other && shift < 32; shift += 8) {
            largest = std::max(largest, std::abs(static_cast<int>(one >> shift & 0xFF) -
                                                 static_cast<int>(other >> shift & 0xFF)));
        }
        return largest;
    }

 private:
    CairoPainter& painter_;
    double scale_;
    PixelRect bounds_;
    CairoSurface surface_{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, bounds_.width, bounds_.height)};
};

}  // namespace norvane
