#pragma once

#include <chrono>

#include "platform/Task.h"

namespace norvane {

// Runs tasks that may block, concurrently: a task that never returns holds up no other one. Tasks that are
// waiting or running when the process ends are not waited for.
class BackgroundQueue {
 public:
    virtual ~BackgroundQueue() = default;

    // Any thread. Returns at once.
    virtual void async(Task task) = 0;
    // Any thread. As `async`, once `delay` has passed on the monotonic clock.
    virtual void asyncAfter(std::chrono::nanoseconds delay, Task task) = 0;
};

}  // namespace norvane
