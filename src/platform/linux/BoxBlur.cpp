#include "platform/linux/BoxBlur.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace norvane {
namespace {

// Below this nothing is to be seen of a blur.
constexpr double kLeastDeviation = 0.05;

std::size_t area(int width, int height) {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

std::vector<float> transposed(const std::vector<float>& pixels, int width, int height) {
    // In blocks that stay in the nearest cache.
    constexpr int kBlock = 16;
    std::vector<float> result(pixels.size());
    for (int top = 0; top < height; top += kBlock) {
        for (int x = 0; x < width; ++x) {
            for (int y = top; y < std::min(top + kBlock, height); ++y)
                result[area(x, height) + static_cast<std::size_t>(y)] =
                    pixels[area(y, width) + static_cast<std::size_t>(x)];
        }
    }
    return result;
}

}  // namespace

// Variances add up, so each pass has its part of it. Of an average over 2r+1 whole pixels and two in part,
// the weight `e` of these follows from its variance.
BoxBlur::BoxBlur(double deviation) {
    if (!(deviation >= kLeastDeviation)) return;
    isNone_ = false;
    const double variance = deviation * deviation / kPasses;
    const double radius = std::floor((std::sqrt(12 * variance + 1) - 1) / 2);
    const double edge = (2 * radius + 1) * (radius * (radius + 1) - 3 * variance) /
                        (6 * (variance - (radius + 1) * (radius + 1)));
    radius_ = static_cast<int>(radius);
    edge_ = static_cast<float>(edge);
    share_ = static_cast<float>(1 / (2 * radius + 1 + 2 * edge));
}

void BoxBlur::blur(cairo_surface_t* image) const {
    if (isNone_ || cairo_surface_status(image) != CAIRO_STATUS_SUCCESS ||
        cairo_image_surface_get_format(image) != CAIRO_FORMAT_A8) {
        return;
    }
    cairo_surface_flush(image);
    const int width = cairo_image_surface_get_width(image);
    const int height = cairo_image_surface_get_height(image);
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(image);
    unsigned char* const bytes = cairo_image_surface_get_data(image);
    if (width <= 0 || height <= 0) return;

    std::vector<float> pixels(area(width, height));
    for (int y = 0; y < height; ++y)
        std::copy_n(bytes + stride * y, width, pixels.begin() + std::ptrdiff_t{width} * y);
    // Along the rows by way of columns: of these, the compiler does many at a time.
    alongColumns(pixels, width, height);
    pixels = transposed(pixels, width, height);
    alongColumns(pixels, height, width);
    pixels = transposed(pixels, height, width);
    for (int y = 0; y < height; ++y) {
        const float* const row = pixels.data() + std::ptrdiff_t{width} * y;
        std::transform(row, row + width, bytes + stride * y, [](float value) {
            return static_cast<unsigned char>(std::clamp(value + 0.5F, 0.0F, 255.0F));
        });
    }
    cairo_surface_mark_dirty(image);
}

void BoxBlur::alongColumns(std::vector<float>& pixels, int width, int height) const {
    const auto columns = static_cast<std::size_t>(width);
    std::vector<float> source(pixels.size());
    std::vector<float> sums(columns);
    const std::vector<float> nothing(columns, 0.0F);
    const auto rowOf = [&](int y) {
        return y < 0 || y >= height ? nothing.data() : source.data() + std::ptrdiff_t{width} * y;
    };
    for (int pass = 0; pass < kPasses; ++pass) {
        source.swap(pixels);
        std::fill(sums.begin(), sums.end(), 0.0F);
        for (int y = 0; y < std::min(radius_, height); ++y) {
            const float* const row = rowOf(y);
            for (std::size_t x = 0; x < columns; ++x)
                sums[x] += row[x];
        }
        for (int y = 0; y < height; ++y) {
            const float* const entering = rowOf(y + radius_);
            const float* const before = rowOf(y - radius_ - 1);
            const float* const after = rowOf(y + radius_ + 1);
            const float* const leaving = rowOf(y - radius_);
            float* const blurred = pixels.data() + std::ptrdiff_t{width} * y;
            for (std::size_t x = 0; x < columns; ++x) {
                const float sum = sums[x] + entering[x];
                blurred[x] = (sum + edge_ * (before[x] + after[x])) * share_;
                sums[x] = sum - leaving[x];
            }
        }
    }
}

}  // namespace norvane
