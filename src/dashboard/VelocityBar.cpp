#include "dashboard/VelocityBar.h"

#include <algorithm>
#include <cmath>

#include "dashboard/GaugeMotion.h"
#include "views/ShapeElement.h"
#include "views/Stateful.h"

namespace norvane {
namespace {

struct DrawnVelocity {
    double animatedFill = 0;
    bool hasAppeared = false;
    double target = 0;
};

}  // namespace

double VelocityBar::fill(double speedMBps) {
    if (!(speedMBps > 0)) return 0;
    return std::clamp(std::log10(std::max(speedMBps, 1.0)) * 0.5, 0.0, 1.0);
}

Element VelocityBar::body() const {
    const double target = fill(speedMBps);
    const Animation animation = GaugeMotion::animation(useSpring, GaugeMotion::kBarDamping);
    return stateful<DrawnVelocity>(
               {},
               [color = color, target, animation](const State<DrawnVelocity>& state) {
                   Element bar = shape(Outline::capsule(), {.fill = color.withOpacity(0.15)})
                                     .overlay(shape(Outline::capsule(),
                                                    {.fill = color, .leadingPart = state->animatedFill}));
                   return following(std::move(bar), state, &DrawnVelocity::animatedFill, target, animation);
               })
        .accessible(
            {.role = AccessibleRole::meter, .value = gaugePercent(target), .number = gaugeNumber(target)});
}

}  // namespace norvane
