#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/BoundedCache.h"
#include "platform/linux/CairoHandles.h"

namespace norvane {

// Our own pictures in the sizes in which they are shown, in pixels, drawn once for each.
class NamedPictures {
 public:
    using Image = std::shared_ptr<cairo_surface_t>;

    // The symbol's coverage (CAIRO_FORMAT_A8) in that many pixels. Null for an unknown name and for an
    // extent that no picture of ours has, less than 1 or more than `kLargestSide`.
    Image symbol(std::string_view name, int width, int height);
    // The image in its colours (CAIRO_FORMAT_ARGB32); null for the same.
    Image image(std::string_view name, int width, int height);

    std::size_t count() const { return kept_.count(); }
    std::size_t bytes() const { return kept_.bytes(); }
    void clear() { kept_.clear(); }

    static constexpr int kLargestSide = 1024;
    static constexpr std::size_t kMostPictures = 128;
    static constexpr std::size_t kMostBytes = 4 * 1024 * 1024;

 private:
    struct Key {
        std::string name;
        cairo_format_t format = CAIRO_FORMAT_A8;
        int width = 0;
        int height = 0;

        bool operator==(const Key&) const = default;
    };

    Image picture(std::string_view name, cairo_format_t format, int width, int height);

    BoundedCache<Key, Image> kept_{kMostPictures, kMostBytes};
};

}  // namespace norvane
