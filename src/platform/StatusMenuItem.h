#pragma once

#include <functional>
#include <string>

namespace norvane {

// A command in the status item's context menu.
struct StatusMenuItem {
    std::string title;
    std::function<void()> action;
};

}  // namespace norvane
