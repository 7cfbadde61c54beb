#pragma once

#include <chrono>
#include <memory>

#include "platform/RepeatingTimer.h"
#include "platform/Task.h"

namespace norvane {

// A queue whose tasks run one after another, never two at once, away from the main thread. Destroying it lets
// the running task finish and drops the waiting ones.
class SerialQueue {
 public:
    virtual ~SerialQueue() = default;

    // Any thread. Returns at once.
    virtual void async(Task task) = 0;

    // Any thread. Runs the task on this queue now and then every `interval` of the monotonic clock, without
    // leeway. Firings that were missed, because the queue was busy or the machine slept, become one; later
    // ones stay on the original grid.
    virtual std::unique_ptr<RepeatingTimer> every(std::chrono::nanoseconds interval, Task task) = 0;
};

}  // namespace norvane
