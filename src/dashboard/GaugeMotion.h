#pragma once

#include <functional>
#include <string>
#include <utility>

#include "platform/AccessibleNumber.h"
#include "views/Element.h"
#include "views/State.h"

namespace norvane {

// How the gauges move. What a gauge draws lags behind its target by the length of an animation.
struct GaugeMotion {
    // By what a drawn value gets to its target, the first time and later on.
    static Animation animation(bool useSpring, double dampingFraction) {
        return useSpring ? Animation::spring(0.6, dampingFraction) : Animation::easeOut(0.55);
    }
    static Animation breathing() { return Animation::easeInOut(2.0).foreverThereAndBack(); }

    // Less damped, so that a ring swings further beyond its value than a bar.
    static constexpr double kBarDamping = 0.8;
    static constexpr double kRingDamping = 0.7;
};

// Has `Drawn::*value` follow the target: it grows from 0 when the gauge appears for the first time, glides to
// each new target, and stays where it is when a popover is shown again. `Drawn` also has `target`, the latest
// one, and `hasAppeared`; `opened` is what else the first appearance does.
template <typename Drawn>
Element following(Element gauge, const State<Drawn>& state, double Drawn::*value, double target,
                  const Animation& animation, std::function<void()> opened = {}) {
    const auto open = [state, value, target, animation, opened = std::move(opened)] {
        if (state->hasAppeared) return;
        state.change([value, target](Drawn& drawn) {
            drawn.*value = 0;
            drawn.target = target;
        });
        state.later([state, value, animation] {
            state.animate(animation, [value](Drawn& drawn) {
                drawn.*value = drawn.target;
                drawn.hasAppeared = true;
            });
        });
        if (opened) opened();
    };
    return std::move(gauge).onAppear(open).onChange(target, [state, value, target, animation] {
        state.animate(animation, [value, target](Drawn& drawn) { drawn.*value = drawn.target = target; });
    });
}

// What a gauge tells those who do not see it: "42 %", and the number behind it, in percent. A share that is
// no number is 0.
std::string gaugePercent(double share);
AccessibleNumber gaugeNumber(double share);

}  // namespace norvane
