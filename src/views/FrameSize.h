#pragma once

#include <optional>

#include "views/Alignment.h"

namespace norvane {

// The size of a frame around an element, in points. What is absent is left to the element; an infinite most
// takes all that is offered.
struct FrameSize {
    std::optional<double> width = {};
    std::optional<double> height = {};
    double minWidth = 0;
    double minHeight = 0;
    std::optional<double> maxWidth = {};
    std::optional<double> maxHeight = {};
    Alignment horizontal = Alignment::center;
    Alignment vertical = Alignment::center;

    bool operator==(const FrameSize&) const = default;
};

}  // namespace norvane
