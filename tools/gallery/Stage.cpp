#include "gallery/Stage.h"

namespace norvane {

Stage::Stage(TextLayouts& layouts, bool isDark) : ruler_(layouts) {
    machine.appearance.setDark(isDark);
}

Platform Stage::platform() {
    return machine.platform(ruler_);
}

}  // namespace norvane
