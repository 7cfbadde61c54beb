#include "dashboard/ArdoCoreArc.h"

#include <string>

#include "dashboard/GaugeMotion.h"
#include "drawing/NamedFonts.h"
#include "views/DepthStack.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Text.h"

namespace norvane {
namespace {

struct DrawnArc {
    double animatedUsage = 0;
    double target = 0;
    bool hasAppeared = false;
};

constexpr double kSide = 38;
constexpr double kArcWidth = 4.5;
const Animation kMove = Animation::easeOut(0.35);

Element arcRing(const DrawnArc& drawn, const Paint& color) {
    const StrokeStyle track{.width = kArcWidth};
    const StrokeStyle arc{.width = kArcWidth, .cap = LineCap::round};
    const double part = drawn.animatedUsage / 100;
    return zstack({},
                  shape(Outline::arc(0, 1),
                        {.stroke = Stroke{.fill = Paint(Ink::primary).withOpacity(0.1), .style = track}}),
                  shape(Outline::arc(0, part),
                        {.stroke = Stroke{.fill = color, .style = arc},
                         .shadows = {{.paint = color.withOpacity(part * 0.8), .radius = 5}}}))
        .frame({.width = kSide, .height = kSide});
}

}  // namespace

Element ArdoCoreArc::body() const {
    return stateful<DrawnArc>({}, [view = *this](const State<DrawnArc>& drawn) {
        const std::string name = "Core " + std::to_string(view.index);
        Element arc =
            vstack({.spacing = 8},               //
                   arcRing(*drawn, view.color),  //
                   text(name, {.font = font::system(10, FontWeight::medium), .lineLimit = 1}, Ink::secondary))
                .accessible({.role = AccessibleRole::meter,
                             .name = name,
                             .value = gaugePercent(view.usage / 100),
                             .number = gaugeNumber(view.usage / 100)});
        return following(std::move(arc), drawn, &DrawnArc::animatedUsage, view.usage, kMove);
    });
}

}  // namespace norvane
