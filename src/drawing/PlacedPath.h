#pragma once

#include <memory>

#include "drawing/Path.h"
#include "drawing/Rect.h"

namespace norvane {

// A path that may be shared by many frames, scaled and then moved to its place.
struct PlacedPath {
    std::shared_ptr<const Path> path;  // null is an empty one
    Point offset;
    double scaleX = 1;
    double scaleY = 1;

    // The smallest rectangle around all its points and control points, where it is placed.
    Rect bounds() const;

    // Two paths of the same segments are the same, whoever owns them.
    bool operator==(const PlacedPath& other) const;
};

}  // namespace norvane
