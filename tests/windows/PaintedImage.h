#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/linux/CairoPainter.h"

namespace norvane {

// An image in memory that lists are painted on, and its pixels: premultiplied,
// 0xAARRGGBB, row by row.
class PaintedImage {
 public:
    PaintedImage(CairoPainter& painter, Size points, double scale = 1)
        : painter_(painter),
          scale_(scale),
          width_(pixelsCovering(points.width, scale)),
          height_(pixelsCovering(points.height, scale)),
          surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width_, height_)) {}
    // All of the list, on an image of its size.
    PaintedImage(CairoPainter& painter, const DisplayList& list, double scale = 1)
        : PaintedImage(painter, list.size, scale) {
        paint(list, {bounds()});
    }

    void paint(const DisplayList& list, const std::vector<PixelRect>& damage) {
        painter_.paint(surface_.get(), {scale_, 0, 0}, list, damage);
    }

    int width() const { return width_; }
    int height() const { return height_; }
    PixelRect bounds() const { return {0, 0, width_, height_}; }
    std::uint32_t at(int x, int y) const {
        cairo_surface_flush(surface_.get());
        return reinterpret_cast<const std::uint32_t*>(
            cairo_image_surface_get_data(surface_.get()) +
            std::ptrdiff_t{cairo_image_surface_get_stride(surface_.get())} * y)[x];
    }
    int alphaAt(int x, int y) const { return static_cast<int>(at(x, y) >> 24); }
    std::vector<std::uint32_t> pixels() const {
        std::vector<std::uint32_t> result;
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x)
                result.push_back(at(x, y));
        }
        return result;
    }
    int count(std::uint32_t pixel) const {
        const auto all = pixels();
        return static_cast<int>(std::count(all.begin(), all.end(), pixel));
    }

    struct Difference {
        int largest = 0;  // of any component of any pixel
        int pixels = 0;   // with a component that differs by more than rounding
    };
    static Difference between(const PaintedImage& one, const PaintedImage& other, int rounding = 0) {
        Difference difference;
        for (int y = 0; y < one.height_; ++y) {
            for (int x = 0; x < one.width_; ++x) {
                const int apart = largestBetween(one.at(x, y), other.at(x, y));
                difference.largest = std::max(difference.largest, apart);
                difference.pixels += apart > rounding ? 1 : 0;
            }
        }
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
    int width_;
    int height_;
    CairoSurface surface_;
};

}  // namespace norvane
