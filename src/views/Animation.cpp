#include "views/Animation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace norvane {
namespace {

using Seconds = std::chrono::duration<double>;

// What remains of a spring's swing when it counts as at rest.
constexpr double kAtRest = 1e-4;
// A spring below this damping would swing for minutes.
constexpr double kLeastDamping = 0.05;
constexpr double kLongestDuration = 3600;
// What breathes without end goes its way in so many steps: each is smaller than can be seen, and every other
// picture is the same as the last one, so that it need not be painted. An even number, so that the middle and
// both ends are among them.
constexpr double kBreathingSteps = 32;

// The cubic timing curve through (0,0) and (1,1) with these control points, as CSS Easing Functions Level 1
// defines it: the height over an abscissa from 0 to 1.
double cubicBezier(double x1, double y1, double x2, double y2, double at) {
    const auto coordinate = [](double first, double second, double t) {
        const double rest = 1 - t;
        return 3 * rest * rest * t * first + 3 * rest * t * t * second + t * t * t;
    };
    // The abscissa grows with the parameter, so halving finds it, to more than any pixel's part.
    double low = 0;
    double high = 1;
    for (int i = 0; i < 30; ++i) {
        const double middle = (low + high) / 2;
        (coordinate(x1, x2, middle) < at ? low : high) = middle;
    }
    return coordinate(y1, y2, (low + high) / 2);
}

// The part of the way that is done after `share` of the time.
double eased(Animation::Curve curve, double share) {
    switch (curve) {
        case Animation::Curve::easeOut:
            return cubicBezier(0, 0, 0.58, 1, share);
        case Animation::Curve::easeInOut:
            return cubicBezier(0.42, 0, 0.58, 1, share);
        case Animation::Curve::linear:
        case Animation::Curve::spring:
            return share;
    }
    return share;
}

double angularFrequency(double response) {
    return 2 * std::numbers::pi / response;
}

double dampingOf(double fraction) {
    return std::isfinite(fraction) ? std::max(fraction, kLeastDamping) : 1;
}

// A damped harmonic oscillator let go at distance 1: its distance, and what each unit of speed at the start
// adds to it.
Animation::Rest swing(double response, double fraction, double time) {
    const double damping = dampingOf(fraction);
    const double frequency = angularFrequency(response);
    const double decay = damping * frequency;
    const double envelope = std::exp(-decay * time);
    if (damping < 1) {
        const double damped = frequency * std::sqrt(1 - damping * damping);
        const double sine = std::sin(damped * time) / damped;
        return {envelope * (std::cos(damped * time) + decay * sine), envelope * sine};
    }
    if (damping == 1) return {envelope * (1 + frequency * time), envelope * time};
    // Overdamped: two decays, the slower one decides.
    const double spread = frequency * std::sqrt(damping * damping - 1);
    const double slow = std::exp((spread - decay) * time);
    const double fast = std::exp((-spread - decay) * time);
    return {((decay + spread) * slow - (decay - spread) * fast) / (2 * spread), (slow - fast) / (2 * spread)};
}

double swingTime(double response, double fraction) {
    const double damping = dampingOf(fraction);
    const double frequency = angularFrequency(response);
    const double slowest =
        damping <= 1 ? damping * frequency : frequency * (damping - std::sqrt(damping * damping - 1));
    return std::min(-std::log(kAtRest) / slowest, kLongestDuration);
}

bool isSpring(const Animation& animation) {
    return animation.curve == Animation::Curve::spring;
}

// How long one run takes, in seconds; 0 where there is no movement at all.
double runTime(const Animation& animation) {
    if (!isSpring(animation)) return Seconds(animation.duration).count();
    if (!std::isfinite(animation.response) || animation.response <= 0) return 0;
    return swingTime(animation.response, animation.dampingFraction);
}

}  // namespace

Animation Animation::timed(Curve curve, double seconds) {
    const double bounded = std::isfinite(seconds) ? std::clamp(seconds, 0.0, kLongestDuration) : 0;
    return {.curve = curve,
            .duration = std::chrono::duration_cast<std::chrono::nanoseconds>(Seconds(bounded))};
}

Animation::Rest Animation::restAfter(std::chrono::nanoseconds since) const {
    const double run = runTime(*this);
    if (!(run > 0)) return {};
    double time = std::max(0.0, Seconds(since).count());
    if (repeats) {
        const double runs = std::floor(time / run);
        time -= runs * run;
        if (reverses && std::fmod(runs, 2) == 1) time = run - time;
    } else if (time >= run) {
        return {};
    }
    if (isSpring(*this)) return swing(response, dampingFraction, time);
    const double done = eased(curve, time / run);
    if (repeats && reverses) return {1 - std::round(done * kBreathingSteps) / kBreathingSteps, 0};
    return {1 - done, 0};
}

bool Animation::isOverAfter(std::chrono::nanoseconds since) const {
    const double run = runTime(*this);
    return !(run > 0) || (!repeats && Seconds(since).count() >= run);
}

}  // namespace norvane
