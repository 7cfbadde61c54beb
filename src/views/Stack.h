#pragma once

#include <utility>
#include <vector>

#include "views/Alignment.h"
#include "views/Axis.h"
#include "views/Element.h"

namespace norvane {

struct StackOptions {
    // Across the stack's direction.
    Alignment alignment = Alignment::center;
    // Between two members, in points.
    double spacing = 0;
};

Element stack(Axis axis, const StackOptions& options, std::vector<Element> members);

// Members from left to right.
template <typename... Members>
Element hstack(const StackOptions& options, Members&&... members) {
    return stack(Axis::horizontal, options, listOf(std::forward<Members>(members)...));
}

// Members from top to bottom.
template <typename... Members>
Element vstack(const StackOptions& options, Members&&... members) {
    return stack(Axis::vertical, options, listOf(std::forward<Members>(members)...));
}

}  // namespace norvane
