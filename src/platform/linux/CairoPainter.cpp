#include "platform/linux/CairoPainter.h"

#include <cmath>

#include "platform/linux/FramePart.h"

namespace norvane {

void CairoPainter::paint(cairo_surface_t* surface, const Placement& placement, const DisplayList& list,
                         std::span<const PixelRect> damage) {
    if (damage.empty() || !std::isfinite(placement.scale) || placement.scale <= 0) return;
    layouts_.rasterizeFor(placement.scale);
    caches_.pictures.dropAbandoned();
    cairo_surface_flush(surface);
    // One by one: frames have few of them, and a clip that is one rectangle costs nothing.
    for (const PixelRect& rect : damage) {
        FramePart(surface, placement, rect, {layouts_, caches_}).paintAnew(list.items);
    }
    cairo_surface_flush(surface);
}

}  // namespace norvane
