#pragma once

#include <utility>

#include "views/Alignment.h"
#include "views/Axis.h"
#include "views/Element.h"

namespace norvane {

struct StackOptions {
    // Across the stack's direction.
    Alignment alignment = Alignment::center;
    // Between two members, in points.
    double spacing = 0;

    bool operator==(const StackOptions&) const = default;
};

Element stack(Axis axis, const StackOptions& options, ElementList members);

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
