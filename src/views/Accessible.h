#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/AccessibleNode.h"
#include "platform/AccessibleNumber.h"

namespace norvane {

// What an element says to those who do not see it.
struct Accessible {
    AccessibleRole role = AccessibleRole::group;
    std::string name = {};
    std::string value = {};
    std::optional<bool> isOn = {};
    std::optional<bool> isExpanded = {};
    bool isEnabled = true;
    // What can be done with it besides pressing, by name.
    std::vector<std::pair<std::string, std::function<void()>>> actions = {};
    // What is inside tells of itself as well, below this.
    bool containsMore = false;
    std::optional<AccessibleNumber> number = {};
    bool isLive = false;
};

}  // namespace norvane
