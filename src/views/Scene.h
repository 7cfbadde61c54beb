#pragma once

#include <functional>
#include <string>
#include <vector>

#include "drawing/DisplayList.h"
#include "drawing/Rect.h"
#include "platform/AccessibleNode.h"

namespace norvane {

// A part of a picture that minds the pointer.
struct SensitiveRegion {
    // The path of its element: the same region keeps it from one picture to the next.
    std::string key;
    Rect frame;
    // Either may be empty. A region with an action is a button.
    std::function<void()> action;
    std::function<void(bool isOver)> onHover;
};

// All that one evaluation of a screen comes to.
struct Scene {
    DisplayList picture;
    // Back to front.
    std::vector<SensitiveRegion> regions;
    AccessibleNode accessible;
};

}  // namespace norvane
