#pragma once

#include <string>
#include <vector>

#include "drawing/Rect.h"

namespace norvane {

enum class AccessibleRole { group, text, image, button };

// What a surface tells those who do not see it, and the tests: a plain value.
struct AccessibleNode {
    AccessibleRole role = AccessibleRole::group;
    std::string name;
    // What a name does not tell: "42 %". Often empty.
    std::string value;
    // In the surface's own points.
    Rect frame;
    std::vector<AccessibleNode> children;

    bool operator==(const AccessibleNode&) const = default;
};

}  // namespace norvane
