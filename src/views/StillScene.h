#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "drawing/DisplayItem.h"
#include "drawing/Point.h"
#include "drawing/Rect.h"
#include "views/Palette.h"
#include "views/Scene.h"

namespace norvane {

// What a part of the tree came to in which nothing moved: the next picture takes it as it is, for as long as
// nothing has happened to the tree but that time has passed, and the part is where it was.
struct StillScene {
    struct Situation {
        // Of the tree: another one after each change of whatever it is made of.
        std::uint64_t edition = 0;
        Palette palette = Palette::light();
        Point origin;
        double scaleX = 1;
        double scaleY = 1;
        Point moved;
        Rect visible;
        bool isInert = false;

        bool operator==(const Situation&) const = default;
    };

    Situation situation;
    std::shared_ptr<const std::vector<DisplayItem>> items;
    Rect bounds;
    std::vector<SensitiveRegion> regions;
};

}  // namespace norvane
