#pragma once

#include <utility>

#include "views/Alignment.h"
#include "views/Element.h"

namespace norvane {

struct DepthOptions {
    Alignment horizontal = Alignment::center;
    Alignment vertical = Alignment::center;

    bool operator==(const DepthOptions&) const = default;
};

Element depthStack(const DepthOptions& options, ElementList members);

// Members upon one another, the first one at the back; as large as the largest.
template <typename... Members>
Element zstack(const DepthOptions& options, Members&&... members) {
    return depthStack(options, listOf(std::forward<Members>(members)...));
}

}  // namespace norvane
