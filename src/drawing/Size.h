#pragma once

namespace norvane {

// An extent in points.
struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

}  // namespace norvane
