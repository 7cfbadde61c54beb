#pragma once

#include <string>
#include <vector>

#include "drawing/DisplayItem.h"
#include "drawing/Size.h"

namespace norvane {

// What a frame paints, back to front: a plain value that can be compared, printed and painted anywhere.
struct DisplayList {
    // The extent of the frame in points.
    Size size;
    std::vector<DisplayItem> items;

    bool operator==(const DisplayList&) const = default;
};

// One line per item, for tests and for people.
std::string printed(const DisplayList& list);

}  // namespace norvane
