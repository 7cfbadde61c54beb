#include "platform/linux/PictureCache.h"

namespace norvane {

PictureCache::Bitmap PictureCache::find(const List& list, double scale) {
    const Bitmap* const kept = kept_.find({list, scale});
    return kept == nullptr ? nullptr : *kept;
}

void PictureCache::keep(const List& list, double scale, const Bitmap& bitmap) {
    dropAbandoned();
    kept_.keep({list, scale}, bitmap,
               static_cast<std::size_t>(cairo_image_surface_get_stride(bitmap.get())) *
                   static_cast<std::size_t>(cairo_image_surface_get_height(bitmap.get())));
}

void PictureCache::dropAbandoned() {
    kept_.dropIf([](const Key& key) { return key.list.expired(); });
}

}  // namespace norvane
