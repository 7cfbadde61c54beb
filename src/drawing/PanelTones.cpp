#include "drawing/PanelTones.h"

namespace norvane {

const PanelTones& panelTones(bool isDark) {
    static constexpr Color kBlack{0, 0, 0, 1};
    static constexpr Color kWhite{1, 1, 1, 1};
    static constexpr PanelTones kLight{.strip = {0.933, 0.937, 0.945, 1},
                                       .stripEdge = kBlack.withOpacity(0.12),
                                       .panel = {0.965, 0.967, 0.973, 1},
                                       .panelOpacity = 0.96,
                                       .outline = kBlack.withOpacity(0.16),
                                       .rim = kWhite.withOpacity(0.75),
                                       .shadowOpacity = 0.26};
    static constexpr PanelTones kDark{.strip = {0.098, 0.102, 0.114, 1},
                                      .stripEdge = kWhite.withOpacity(0.09),
                                      .panel = {0.118, 0.122, 0.137, 1},
                                      .panelOpacity = 0.96,
                                      .outline = kBlack.withOpacity(0.55),
                                      .rim = kWhite.withOpacity(0.11),
                                      .shadowOpacity = 0.5};
    return isDark ? kDark : kLight;
}

}  // namespace norvane
