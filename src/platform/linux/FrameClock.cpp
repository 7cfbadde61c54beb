#include "platform/linux/FrameClock.h"

#include <algorithm>
#include <cmath>

namespace norvane {
namespace {

// No screen shows more; and whatever moves so slowly may as well be looked at again now and then.
constexpr double kMostRate = 240;
constexpr double kLeastRate = 1.0 / 3600;

}  // namespace

void FrameClock::painted(MonotonicInstant at, double rate) {
    const auto due = due_;
    stop();
    if (!(rate > 0)) return;  // nor is it for what is no number
    const auto interval = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(1 / std::clamp(rate, kLeastRate, kMostRate)));
    const bool isOnTime = due && at >= *due && at - *due < interval;
    due_ = (isOnTime ? *due : at) + interval;
    const auto wait = std::max<std::chrono::nanoseconds>(*due_ - clock_.now(), std::chrono::nanoseconds(0));
    timer_ = mainQueue_.after(wait, [this] { fire(); });
}

void FrameClock::stop() {
    due_.reset();
    timer_.cancel();
    lit_.cancel();
}

void FrameClock::fire() {
    timer_.cancel();
    if (light_.isLit()) {
        paint_();
    } else {
        waitForLight();
    }
}

bool FrameClock::mayPaint() {
    if (lit_) return false;
    if (!light_.isKnownDark()) return true;
    stop();
    waitForLight();
    return false;
}

void FrameClock::waitForLight() {
    lit_ = light_.onLit([this] {
        stop();
        paint_();
    });
}

}  // namespace norvane
