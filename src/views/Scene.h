#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "drawing/DisplayList.h"
#include "drawing/Rect.h"
#include "platform/AccessibleNode.h"
#include "views/Interaction.h"

namespace norvane {

// A part of a picture that minds pointer or keyboard.
struct SensitiveRegion {
    // The path of its element: the same region keeps it from one picture to the next.
    std::string key;
    // What can be seen of it, and all of it.
    Rect frame;
    Rect whole;
    std::shared_ptr<const Interaction> interaction;
    // Of the ring around it while it has the keyboard.
    double radius = 0;
};

// All that one walk over a screen's tree comes to.
struct Scene {
    DisplayList picture;
    // Back to front.
    std::vector<SensitiveRegion> regions;
    // How many pictures a second it takes to follow what moves in it.
    double frameRate = 0;
    // Only where it was asked for, with what its nodes offer to do, by the nodes' keys.
    AccessibleNode accessible;
    std::multimap<std::string, std::pair<std::string, std::function<void()>>, std::less<>> actions;
};

}  // namespace norvane
