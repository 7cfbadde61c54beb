#pragma once

#include <string>

#include "dashboard/PodValue.h"
#include "views/Element.h"

namespace norvane {

// One pod: a component's name over its value, on a card.
struct ArdoSnapshotPodView {
    std::string title;
    PodValue value;

    Element body() const;
};

}  // namespace norvane
