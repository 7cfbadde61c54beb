#pragma once

#include <memory>
#include <string>

#include "views/Animated.h"
#include "views/Transition.h"

namespace norvane {

class Node;

// A node in its parent: what is the same child from one evaluation to the next, and how it comes and goes.
struct Child {
    std::string key;
    std::unique_ptr<Node> node;
    Transition transition = {};
    double layoutPriority = 0;
    // From 0, not there, to 1, wholly there.
    Animated<double> presence{1.0};
};

}  // namespace norvane
