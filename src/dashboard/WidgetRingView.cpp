#include "dashboard/WidgetRingView.h"

#include <cmath>
#include <utility>

#include "dashboard/GaugeMotion.h"
#include "views/DepthStack.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

struct DrawnGauge {
    double animatedProgress = 0;
    bool hasAppeared = false;
    bool isBreathing = false;
    double target = 0;
};

// Between the ring's frame and the texts, in points.
constexpr double kSpacing = 8;
constexpr StrokeStyle kLine{.width = WidgetRingView::kLineWidth, .cap = LineCap::round};

// Something that an animation can start from again.
double finite(double progress) {
    if (std::isinf(progress)) return progress > 0 ? 1 : 0;
    return std::isnan(progress) ? 0 : progress;
}

// It has an opacity of its own: the glow breathes on while it comes and goes.
Element glow(const Outline& arc, const Paint& color, const DrawnGauge& drawn) {
    return shape(arc, {.stroke = Stroke{.fill = Ink::clear, .style = kLine},
                       .shadows = {{.paint = color.withOpacity(drawn.isBreathing ? 0.8 : 0.3),
                                    .radius = drawn.isBreathing ? 7.0 : 3.0}}})
        .opacity(drawn.animatedProgress > 0 ? 1 : 0);
}

Element ring(const WidgetRingView& view, const DrawnGauge& drawn) {
    const Outline arc = Outline::arc(0, drawn.animatedProgress);
    const FillStyle track(Paint(Ink::primary).withOpacity(0.15));
    return zstack({},  //
                  shape(Outline::circle(), {.stroke = Stroke{.fill = track, .style = kLine}}),
                  glow(arc, view.activeColor, drawn),
                  shape(arc, {.stroke = Stroke{.fill = view.activeColor, .style = kLine}}),
                  symbol(view.iconName, {.size = 20},
                         view.iconColor.value_or(Paint(Ink::primary).withOpacity(0.8))))
        .frame({.width = WidgetRingView::kDiameter, .height = WidgetRingView::kDiameter});
}

Element texts(const WidgetRingView& view) {
    const TextStyle valueStyle{.font = {.size = 16,
                                        .weight = FontWeight::semibold,
                                        .design = FontDesign::monospaced,
                                        .monospacedDigits = true},
                               .alignment = TextAlignment::center};
    const TextStyle titleStyle{.font = {.size = 10, .weight = FontWeight::medium},
                               .alignment = TextAlignment::center};
    return vstack({.spacing = 2}, text(view.valueText, valueStyle),
                  text(view.title, titleStyle, Ink::secondary));
}

}  // namespace

Element WidgetRingView::body() const {
    const double target = finite(progress);
    const Animation animation = GaugeMotion::animation(useSpring, GaugeMotion::kRingDamping);
    return stateful<DrawnGauge>(
               {},
               [view = *this, target, animation](const State<DrawnGauge>& state) {
                   Element gauge = vstack({.spacing = kSpacing}, ring(view, *state), texts(view));
                   return following(std::move(gauge), state, &DrawnGauge::animatedProgress, target, animation,
                                    [state] {
                                        state.animate(GaugeMotion::breathing(),
                                                      [](DrawnGauge& drawn) { drawn.isBreathing = true; });
                                    });
               })
        .accessible({.role = AccessibleRole::meter,
                     .name = title,
                     .value = valueText.empty() ? gaugePercent(target) : valueText,
                     .number = saysShare ? std::optional(gaugeNumber(target)) : std::nullopt});
}

}  // namespace norvane
