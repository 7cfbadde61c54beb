#include "platform/linux/NotifierImage.h"

#include <cstddef>
#include <cstring>

namespace norvane {

NotifierImage NotifierImage::of(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    const unsigned char* const data = cairo_image_surface_get_data(surface);
    if (data == nullptr || cairo_image_surface_get_format(surface) != CAIRO_FORMAT_ARGB32) return {};
    NotifierImage image{cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface), {}};
    image.bytes.reserve(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) * 4);
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, data + y * stride + std::ptrdiff_t{x} * 4, sizeof pixel);
            const std::uint32_t alpha = pixel >> 24;
            image.bytes.push_back(static_cast<std::uint8_t>(alpha));
            for (const unsigned shift : {16u, 8u, 0u}) {
                const std::uint32_t part = pixel >> shift & 0xFF;
                image.bytes.push_back(
                    static_cast<std::uint8_t>(alpha == 0 ? 0 : (part * 255 + alpha / 2) / alpha));
            }
        }
    }
    return image;
}

}  // namespace norvane
