#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace norvane {

// The width of each of `columns` equal columns in `room` points; 0 where the gaps take it all.
double columnWidth(double room, int columns, double spacing);

// The height of each row where `heights` fill rows of `columns` one after another: its highest member's.
std::vector<double> rowHeights(std::span<const double> heights, int columns);

}  // namespace norvane
