#include "dashboard/ArdoNeonBar.h"

#include <algorithm>
#include <cmath>

#include "dashboard/GaugeMotion.h"
#include "views/ShapeElement.h"
#include "views/Stateful.h"

namespace norvane {
namespace {

struct DrawnBar {
    double animatedRatio = 0;
    bool hasAppeared = false;
    bool isBreathing = false;
    double target = 0;
};

ShapeStyle fillStyle(const Paint& color, const DrawnBar& drawn) {
    const FillStyle highlight(Paint(Ink::white).withOpacity(0.4), Ink::clear, GradientDirection::topToBottom);
    return {.fill = FillStyle(color.withOpacity(0.7), color, GradientDirection::leadingToTrailing),
            .stroke = Stroke{.fill = highlight, .style = {.width = 0.5}},
            .shadows = {{.paint = color.withOpacity(drawn.isBreathing ? 0.8 : 0.2),
                         .radius = drawn.isBreathing ? 6.0 : 2.0}},
            .leadingPart = drawn.animatedRatio};
}

}  // namespace

double ArdoNeonBar::ratio(double value, double total) {
    if (!(total > 0) || std::isnan(value)) return 0;
    const double share = value / total;
    // An infinite part of an infinite whole.
    return std::isnan(share) ? 0 : std::clamp(share, 0.0, 1.0);
}

Element ArdoNeonBar::body() const {
    const double target = ratio(value, total);
    const Animation animation = GaugeMotion::animation(useSpring, GaugeMotion::kBarDamping);
    return stateful<DrawnBar>(
               {},
               [color = color, target, animation](const State<DrawnBar>& state) {
                   Element bar = shape(Outline::capsule(), {.fill = Paint(Ink::primary).withOpacity(0.05)})
                                     .overlay(shape(Outline::capsule(), fillStyle(color, *state)));
                   return following(std::move(bar), state, &DrawnBar::animatedRatio, target, animation,
                                    [state] {
                                        state.animate(GaugeMotion::breathing(),
                                                      [](DrawnBar& drawn) { drawn.isBreathing = true; });
                                    });
               })
        .accessible(
            {.role = AccessibleRole::meter, .value = gaugePercent(target), .number = gaugeNumber(target)});
}

}  // namespace norvane
