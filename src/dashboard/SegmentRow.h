#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// Equally wide segments in a capsule, one of them chosen: a pill lies behind it, which glides to the next
// one. What the values behind the segments are is not its business.
struct SegmentRow {
    // What is being chosen, for those who do not see it.
    std::string name = {};
    std::vector<std::string> labels = {};
    // None where the value is none of these.
    std::optional<std::size_t> chosen = {};
    Paint activeTint = Ink::green;
    // In points.
    double itemWidth = 0;
    // Called inside the pill's spring, with a segment that is not the chosen one: whatever it changes moves
    // along.
    std::function<void(std::size_t index)> choose = {};

    Element body() const;
};

}  // namespace norvane
