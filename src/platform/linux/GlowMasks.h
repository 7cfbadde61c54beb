#pragma once

#include <memory>

#include "platform/linux/BoundedCache.h"
#include "platform/linux/GlowForm.h"
#include "platform/linux/GlowMask.h"

namespace norvane {

// The masks of glows and shadows, blurred once and kept while they are used. A mask has no place, and none of
// a colour: the same glow elsewhere, or in another colour, is the same mask.
class GlowMasks {
 public:
    // Null for a mask too large to be made. The deviation of the blur is in pixels.
    std::shared_ptr<const GlowMask> mask(const GlowForm& form, double deviation);

    std::size_t count() const { return kept_.count(); }
    std::size_t bytes() const { return kept_.bytes(); }
    void clear() { kept_.clear(); }

    static constexpr std::size_t kMostMasks = 128;
    static constexpr std::size_t kMostBytes = 3 * 1024 * 1024;

 private:
    struct Key {
        GlowForm form;
        double deviation = 0;

        bool operator==(const Key&) const = default;
    };

    BoundedCache<Key, std::shared_ptr<const GlowMask>> kept_{kMostMasks, kMostBytes};
};

}  // namespace norvane
