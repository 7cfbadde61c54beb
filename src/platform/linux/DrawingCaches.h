#pragma once

#include <cstddef>

#include "platform/linux/GlowMasks.h"
#include "platform/linux/NamedPictures.h"
#include "platform/linux/PictureCache.h"
#include "platform/linux/RingMasks.h"

namespace norvane {

// Everything that painting keeps besides text. Each part is bounded, and all of it can be given up at any
// time: it is made again when it is needed.
struct DrawingCaches {
    GlowMasks glows;
    NamedPictures named;
    PictureCache pictures;
    RingMasks rings;

    std::size_t count() const { return glows.count() + named.count() + pictures.count() + rings.count(); }
    std::size_t bytes() const { return glows.bytes() + named.bytes() + pictures.bytes() + rings.bytes(); }
    void clear() {
        glows.clear();
        named.clear();
        pictures.clear();
        rings.clear();
    }
};

}  // namespace norvane
