#include "platform/linux/GradientBitmap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "platform/linux/CairoShapes.h"

namespace norvane {
namespace {

std::uint32_t byteOf(double component) {
    // Between enormous colours there may be something that is no number: nothing is seen of it.
    const double bounded = component > 0 ? std::min(component, 1.0) : 0.0;
    return static_cast<std::uint32_t>(bounded * 255 + 0.5);
}

std::uint32_t premultiplied(const Color& color) {
    const double alpha = std::clamp(color.alpha, 0.0, 1.0);
    const auto part = [alpha](double component) { return byteOf(std::clamp(component, 0.0, 1.0) * alpha); };
    return byteOf(alpha) << 24 | part(color.red) << 16 | part(color.green) << 8 | part(color.blue);
}

Color mixedColor(const Color& from, const Color& to, double share) {
    const auto mix = [share](double a, double b) { return a + (b - a) * share; };
    return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue),
            mix(from.alpha, to.alpha)};
}

}  // namespace

CairoSurface gradientBitmap(const Fill& fill, const PixelPlacement& placement, const PixelRect& pixels) {
    if (fill.isPlain() || fill.start.y != fill.end.y || fill.start.x == fill.end.x) return nullptr;
    CairoSurface bitmap(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels.width, pixels.height));
    if (cairo_surface_status(bitmap.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    const GradientEnds ends = endsOf(fill);
    unsigned char* const bytes = cairo_image_surface_get_data(bitmap.get());
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(bitmap.get());
    auto* const row = reinterpret_cast<std::uint32_t*>(bytes);
    for (int x = 0; x < pixels.width; ++x) {
        const double at = (pixels.x + x - placement.x + 0.5) / placement.scale;
        const double share = std::clamp((at - fill.start.x) / (fill.end.x - fill.start.x), 0.0, 1.0);
        row[x] = premultiplied(mixedColor(ends.from, ends.to, share));
    }
    for (int y = 1; y < pixels.height; ++y)
        std::copy_n(bytes, std::ptrdiff_t{4} * pixels.width, bytes + stride * y);
    cairo_surface_mark_dirty(bitmap.get());
    return bitmap;
}

}  // namespace norvane
