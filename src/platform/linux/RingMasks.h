#pragma once

#include <cstddef>
#include <memory>

#include "platform/linux/ArcCoverage.h"
#include "platform/linux/BoundedCache.h"

namespace norvane {

// The masks of whole circles' lines, which lie under gauges and stay as they are while those move. Circles on
// the same part of a pixel have the same one.
class RingMasks {
 public:
    // Around `phase`, which is less than a pixel from the origin. Null for a line that has to be drawn as a
    // path.
    std::shared_ptr<const ArcCoverage> ring(Point phase, double radius, double width);

    std::size_t count() const { return kept_.count(); }
    std::size_t bytes() const { return kept_.bytes(); }
    void clear() { kept_.clear(); }

 private:
    struct Key {
        Point phase;
        double radius = 0;
        double width = 0;

        bool operator==(const Key&) const = default;
    };

    BoundedCache<Key, std::shared_ptr<const ArcCoverage>> kept_{32, 256 * 1024};
};

}  // namespace norvane
