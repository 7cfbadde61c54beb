#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "drawing/PictureLayer.h"
#include "drawing/Size.h"

namespace norvane {

// A picture of ours, drawn for the program and compiled into it.
struct Picture {
    // The extent of its grid. Outlines lie within it.
    Size grid;
    // Back to front.
    std::vector<PictureLayer> layers;
};

// The picture of a single colour by that name, on a square grid; none where there is no such symbol.
std::optional<Picture> symbolNamed(std::string_view name);
// The picture in colours by that name.
std::optional<Picture> imageNamed(std::string_view name);

}  // namespace norvane
