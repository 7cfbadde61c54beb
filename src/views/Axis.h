#pragma once

#include "drawing/Rect.h"
#include "views/Proposal.h"

namespace norvane {

// The direction of a stack. The functions let one piece of code lay out rows and columns.
enum class Axis { horizontal, vertical };

constexpr double along(Axis axis, Size size) {
    return axis == Axis::horizontal ? size.width : size.height;
}
constexpr double across(Axis axis, Size size) {
    return axis == Axis::horizontal ? size.height : size.width;
}

constexpr Size sizeOf(Axis axis, double along, double across) {
    return axis == Axis::horizontal ? Size{along, across} : Size{across, along};
}
constexpr Point pointOf(Axis axis, double along, double across) {
    return axis == Axis::horizontal ? Point{along, across} : Point{across, along};
}

constexpr std::optional<double> along(Axis axis, const Proposal& proposal) {
    return axis == Axis::horizontal ? proposal.width : proposal.height;
}
constexpr std::optional<double> across(Axis axis, const Proposal& proposal) {
    return axis == Axis::horizontal ? proposal.height : proposal.width;
}
constexpr Proposal proposalOf(Axis axis, std::optional<double> along, std::optional<double> across) {
    return axis == Axis::horizontal ? Proposal{along, across} : Proposal{across, along};
}

}  // namespace norvane
