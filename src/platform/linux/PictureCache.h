#pragma once

#include <memory>

#include "drawing/DisplayList.h"
#include "platform/linux/BoundedCache.h"
#include "platform/linux/CairoHandles.h"

namespace norvane {

// The bitmaps (CAIRO_FORMAT_ARGB32) of finished lists. A list that nobody holds any more is not kept alive:
// its bitmap goes at the next occasion.
class PictureCache {
 public:
    using Bitmap = std::shared_ptr<cairo_surface_t>;
    using List = std::shared_ptr<const DisplayList>;

    // Null where it is not kept.
    Bitmap find(const List& list, double scale);
    void keep(const List& list, double scale, const Bitmap& bitmap);
    // Gives up the bitmaps of lists that are gone.
    void dropAbandoned();

    std::size_t count() const { return kept_.count(); }
    std::size_t bytes() const { return kept_.bytes(); }
    void clear() { kept_.clear(); }

    static constexpr std::size_t kMostPictures = 16;
    static constexpr std::size_t kMostBytes = 12 * 1024 * 1024;

 private:
    struct Key {
        std::weak_ptr<const DisplayList> list;
        double scale = 1;

        // The same object, not only one in its place.
        bool operator==(const Key& other) const {
            return scale == other.scale && !list.owner_before(other.list) && !other.list.owner_before(list);
        }
    };

    BoundedCache<Key, Bitmap> kept_{kMostPictures, kMostBytes};
};

}  // namespace norvane
