#pragma once

#include <functional>

#include "drawing/Rect.h"
#include "views/Element.h"

namespace norvane {

class SceneBuilder;

// What cannot be said with shapes: `draw` paints it into its frame, at each picture anew. It takes all that
// it is offered, and says nothing to those who cannot see.
Element canvas(std::function<void(SceneBuilder& scene, const Rect& frame)> draw);

// The same for what costs more to paint than to copy: it is cut at its frame, painted anew only where it
// would come out differently, and stands on whole pixels. The frame that it is given begins at 0.
Element keptCanvas(std::function<void(SceneBuilder& scene, const Rect& frame)> draw);

}  // namespace norvane
