#pragma once

namespace norvane {

// Where on a surface a list is painted.
struct PixelPlacement {
    double scale = 1;  // pixels per point
    int x = 0;         // pixels from the surface's corner to the list's
    int y = 0;

    bool operator==(const PixelPlacement&) const = default;
};

}  // namespace norvane
