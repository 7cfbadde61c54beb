#pragma once

#include "drawing/Color.h"

namespace norvane {

// The colours of what is behind our contents: the desktop's own are not known to anybody but its toolkit.
struct PanelTones {
    // The strip in the panel's place: `windowBackground`, opaque, and the line along its free edges.
    Color strip;
    Color stripEdge;
    // A popover: opaque where nothing can shine through, else with the panel's opacity.
    Color panel;
    double panelOpacity = 1;
    // The panel's outline, one pixel wide, and the light that falls on its rim, one pixel inside of it.
    Color outline;
    Color rim;
    // Of the shadow, where there can be one, at its darkest.
    double shadowOpacity = 0;

    bool operator==(const PanelTones&) const = default;
};

const PanelTones& panelTones(bool isDark);

}  // namespace norvane
