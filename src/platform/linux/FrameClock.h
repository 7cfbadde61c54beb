#pragma once

#include <functional>
#include <optional>

#include "platform/linux/ScreenLight.h"
#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"

namespace norvane {

// When a surface that moves by itself paints its next picture. A surface that stands still has no timer, and
// neither has one on a dark screen: that gets one picture as soon as there is light. Main thread only.
class FrameClock {
 public:
    // All outlive it. `paint` paints a picture, if one can be painted, and says so by `painted`.
    FrameClock(MainQueue& mainQueue, const MonotonicClock& clock, ScreenLight& light,
               std::function<void()> paint)
        : mainQueue_(mainQueue), clock_(clock), light_(light), paint_(std::move(paint)) {}

    // A picture of this moment has been painted, whoever asked for it, which so many a second follow. Those
    // that this clock asks for keep their distance on average, however late the main loop is with one. What
    // is missed is missed: after a picture that came too late the next ones are counted from that.
    void painted(MonotonicInstant at, double rate);
    // No picture is asked for until the next one has been painted.
    void stop();

    // Whether a picture is worth painting. On a dark screen none is until this clock asks for one.
    bool mayPaint();

 private:
    void fire();
    void waitForLight();

    MainQueue& mainQueue_;
    const MonotonicClock& clock_;
    ScreenLight& light_;
    std::function<void()> paint_;
    std::optional<MonotonicInstant> due_;  // of the picture that was asked for last, or is to be
    Cancellation timer_;
    Cancellation lit_;
};

}  // namespace norvane
