#include "platform/linux/RingMasks.h"

#include <utility>

#include "platform/linux/CairoShapes.h"

namespace norvane {

std::shared_ptr<const ArcCoverage> RingMasks::ring(Point phase, double radius, double width) {
    const Key key{phase, radius, width};
    if (const auto* kept = kept_.find(key)) return *kept;
    constexpr int kFar = static_cast<int>(kFarthestPixel);
    auto made = ArcCoverage::of({phase, radius, 0, 1}, {.width = width}, {-kFar, -kFar, 2 * kFar, 2 * kFar});
    if (!made || !made->mask) return nullptr;
    const auto bytes = static_cast<std::size_t>(cairo_image_surface_get_stride(made->mask.get())) *
                       static_cast<std::size_t>(made->area.height);
    auto ring = std::make_shared<const ArcCoverage>(std::move(*made));
    kept_.keep(key, ring, bytes);
    return ring;
}

}  // namespace norvane
