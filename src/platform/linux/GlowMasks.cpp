#include "platform/linux/GlowMasks.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/linux/BoxBlur.h"

namespace norvane {
namespace {

// Pixels. Nothing of a screen's size is larger, thanks to the sides that are alike.
constexpr std::int64_t kLargestMask = 2 * 1024 * 1024;
// The part of a side that stands for all of it grows in these steps, so that a side that grows needs few
// masks.
constexpr int kAlikeStep = 64;
constexpr int kMostAlike = 256;

// Shortens a side, of `length` pixels, that is alike but for `end` pixels at both of its ends.
GlowMask::Axis shorten(int& length, int end, int margin) {
    if (length <= 2 * end) return {};
    const int alike = std::min((length - 2 * end + kAlikeStep - 1) / kAlikeStep * kAlikeStep, kMostAlike);
    length = 2 * end + alike;
    return {end + margin, alike};
}

}  // namespace

std::shared_ptr<const GlowMask> GlowMasks::mask(const GlowForm& form, double deviation) {
    const BoxBlur blur(deviation);
    auto made = std::make_shared<GlowMask>();
    made->margin = blur.reach() + form.outside() + 1;
    Key key{form, deviation};
    if (const auto corner = form.corner()) {
        made->across = shorten(key.form.width, *corner + blur.reach(), made->margin);
        made->down = shorten(key.form.height, *corner + blur.reach(), made->margin);
    }
    if (const auto* kept = kept_.find(key)) return *kept;

    const int width = key.form.width + 2 * made->margin;
    const int height = key.form.height + 2 * made->margin;
    if (std::int64_t{width} * height > kLargestMask) return nullptr;
    made->coverage.reset(cairo_image_surface_create(CAIRO_FORMAT_A8, width, height));
    const CairoContext context(cairo_create(made->coverage.get()));
    cairo_translate(context.get(), made->margin, made->margin);
    key.form.paint(context.get());
    cairo_surface_flush(made->coverage.get());
    blur.blur(made->coverage.get());
    const auto bytes = static_cast<std::size_t>(cairo_image_surface_get_stride(made->coverage.get())) *
                       static_cast<std::size_t>(height);
    kept_.keep(std::move(key), made, bytes);
    return made;
}

}  // namespace norvane
