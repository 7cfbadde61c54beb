#pragma once

#include <functional>

#include "drawing/Rect.h"
#include "views/Element.h"

namespace norvane {

class SceneBuilder;

// What cannot be said with shapes: `draw` paints it into its frame, at each picture anew. It takes all that
// it is offered, and says nothing to those who cannot see.
Element canvas(std::function<void(SceneBuilder& scene, const Rect& frame)> draw);

}  // namespace norvane
