#pragma once

#include <functional>
#include <string>

#include "dashboard/PodValue.h"
#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// One pod: a component's symbol, name and value on a card that can be pressed.
struct ArdoSnapshotPodView {
    std::string icon = {};
    std::string title = {};
    PodValue value = {};
    // Takes what the others leave, for a long unit.
    bool isWide = false;
    // The pod's panel is open.
    bool isActive = false;
    Paint color = Ink::primary;
    std::function<void()> action = {};

    Element body() const;
};

}  // namespace norvane
