#pragma once

#include <chrono>

namespace norvane {

// How something gets from where it stands to where it shall be: a function of the time since it set out.
struct Animation {
    enum class Curve { linear, easeOut, easeInOut, spring };

    Curve curve = Curve::easeOut;
    std::chrono::nanoseconds duration{};
    // Of a spring: its undamped period in seconds, and how much of the critical damping it has; below 1 it
    // swings beyond its end.
    double response = 0;
    double dampingFraction = 1;
    // Over and over again, each time from the start; with `reverses` there and back.
    bool repeats = false;
    bool reverses = false;

    static Animation linear(double seconds) { return timed(Curve::linear, seconds); }
    static Animation easeOut(double seconds) { return timed(Curve::easeOut, seconds); }
    static Animation easeInOut(double seconds) { return timed(Curve::easeInOut, seconds); }
    static Animation spring(double response, double dampingFraction) {
        return {.curve = Curve::spring, .response = response, .dampingFraction = dampingFraction};
    }
    // The same, without an end.
    Animation forever() const { return repeated(false); }
    Animation foreverThereAndBack() const { return repeated(true); }

    // What is left of a movement after that time: `way` of the way from the start to the end, from 1 to 0,
    // and `drift` seconds of the speed with which it set out. Only a spring minds the latter.
    struct Rest {
        double way = 0;
        double drift = 0;
    };
    Rest restAfter(std::chrono::nanoseconds time) const;
    // Whether nothing is left to be seen.
    bool isOverAfter(std::chrono::nanoseconds time) const;

    bool operator==(const Animation&) const = default;

 private:
    static Animation timed(Curve curve, double seconds);
    Animation repeated(bool thereAndBack) const {
        Animation animation = *this;
        animation.repeats = true;
        animation.reverses = thereAndBack;
        return animation;
    }
};

}  // namespace norvane
