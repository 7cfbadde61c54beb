#include "views/GridLayout.h"

#include <algorithm>

namespace norvane {

double columnWidth(double room, int columns, double spacing) {
    if (columns < 1) return 0;
    const double width = (room - spacing * (columns - 1)) / columns;
    return width > 0 ? width : 0;
}

std::vector<double> rowHeights(std::span<const double> heights, int columns) {
    const auto perRow = static_cast<std::size_t>(std::max(columns, 1));
    std::vector<double> rows((heights.size() + perRow - 1) / perRow, 0);
    for (std::size_t i = 0; i < heights.size(); ++i)
        rows[i / perRow] = std::max(rows[i / perRow], heights[i]);
    return rows;
}

}  // namespace norvane
