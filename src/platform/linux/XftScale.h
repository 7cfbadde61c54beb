#pragma once

#include <string_view>

namespace norvane {

// Pixels per point, from the resources of the X server ("name:<tab>value" lines, as xrdb stores them in
// RESOURCE_MANAGER): the value of Xft.dpi by 96, between 0.5 and 8. Where it is missing, or no number above
// 0,
// 1. Of several lines the last one holds.
double scaleFromResources(std::string_view resources);

}  // namespace norvane
