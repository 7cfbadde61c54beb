#include "drawing/PanelTones.h"

namespace norvane {

const PanelTones& panelTones(bool isDark) {
    static constexpr PanelTones kLight{.strip = {0.933, 0.937, 0.945, 1},
                                       .stripEdge = Color::black().withOpacity(0.12),
                                       .panel = {0.965, 0.967, 0.973, 1},
                                       .panelOpacity = 0.96,
                                       .outline = Color::black().withOpacity(0.16),
                                       .rim = Color::white().withOpacity(0.75),
                                       .shadowOpacity = 0.26};
    static constexpr PanelTones kDark{.strip = {0.098, 0.102, 0.114, 1},
                                      .stripEdge = Color::white().withOpacity(0.09),
                                      .panel = {0.118, 0.122, 0.137, 1},
                                      .panelOpacity = 0.96,
                                      .outline = Color::black().withOpacity(0.55),
                                      .rim = Color::white().withOpacity(0.11),
                                      .shadowOpacity = 0.5};
    return isDark ? kDark : kLight;
}

}  // namespace norvane
