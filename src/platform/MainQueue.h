#pragma once

#include <chrono>

#include "platform/Cancellation.h"
#include "platform/Task.h"

namespace norvane {

// The main thread's queue. Tasks run one after another in the order in which they were enqueued; a task
// enqueued by a running task runs in a later turn. What is still waiting when the process ends is dropped.
class MainQueue {
 public:
    virtual ~MainQueue() = default;

    // Any thread. Returns at once and, once the queue has grown to its usual length, allocates nothing.
    virtual void async(Task task) = 0;

    // Main thread only. Runs the task on the main thread once `delay` has passed on the monotonic clock,
    // unless the returned value was cancelled or destroyed first.
    [[nodiscard]] virtual Cancellation after(std::chrono::nanoseconds delay, Task task) = 0;
};

}  // namespace norvane
