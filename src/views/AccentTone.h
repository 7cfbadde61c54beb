#pragma once

#include "drawing/Color.h"

namespace norvane {

// The accent colour that a user chose, as it is used on a panel of that appearance: white text reads on it,
// and it can be told from the panel, both at a contrast of 3:1 and more. A colour that does so already stays
// as it is; another one is made darker or lighter until it does, and keeps its hue.
Color accentTone(const Color& chosen, bool isDark);

}  // namespace norvane
