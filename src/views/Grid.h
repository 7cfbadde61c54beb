#pragma once

#include "views/Alignment.h"
#include "views/Element.h"

namespace norvane {

struct GridOptions {
    int columns = 1;
    // In points.
    double columnSpacing = 0;
    double rowSpacing = 0;
    // Of each member within its column.
    Alignment alignment = Alignment::center;

    bool operator==(const GridOptions&) const = default;
};

// Members in rows of equally wide columns that share the width between them.
Element grid(const GridOptions& options, std::vector<Element> members);

}  // namespace norvane
