#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"

namespace norvane {

// Does something soon after it was requested, once for many requests, and no sooner than a pause after it was
// done last. While nothing is requested there is no timer. Main thread only.
class SpacedTask {
 public:
    // Queue and clock outlive it. The function says whether there was anything to do.
    SpacedTask(MainQueue& mainQueue, const MonotonicClock& clock, std::chrono::nanoseconds pause,
               std::function<bool()> run);

    void request();

 private:
    void run();

    MainQueue& mainQueue_;
    const MonotonicClock& clock_;
    const std::chrono::nanoseconds pause_;
    const std::function<bool()> run_;
    std::optional<MonotonicInstant> ran_;
    Cancellation timer_;
};

}  // namespace norvane
