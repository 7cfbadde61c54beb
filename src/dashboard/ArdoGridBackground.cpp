#include "dashboard/ArdoGridBackground.h"

#include <memory>

#include "views/Canvas.h"
#include "views/SceneBuilder.h"

namespace norvane {

Element ArdoGridBackground::body() const {
    return keptCanvas([](SceneBuilder& scene, const Rect& frame) {
        auto lines = std::make_shared<Path>();
        for (const double share : {0.0, 0.25, 0.5, 0.75, 1.0}) {
            const double height = share * frame.size.height;
            lines->segments.emplace_back(Path::MoveTo{{0, height}});
            lines->segments.emplace_back(Path::LineTo{{frame.size.width, height}});
        }
        scene.stroke(PlacedPath{std::move(lines), frame.origin}, {.width = 1, .dashOn = 2, .dashOff = 4},
                     scene.palette().color(Ink::primary));
    });
}

}  // namespace norvane
