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

// The items one after another as they are painted, the shared ones in the place of what shares them. Groups
// and pictures are items like others. Valid as long as the given ones.
std::vector<const DisplayItem*> flatItems(const std::vector<DisplayItem>& items);

// One line per item, for tests and for people. What is shared is printed as if it were not.
std::string printed(const DisplayList& list);

}  // namespace norvane
