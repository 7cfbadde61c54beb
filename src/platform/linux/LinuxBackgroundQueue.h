#pragma once

#include <chrono>
#include <memory>

#include "platform/BackgroundQueue.h"

namespace norvane {

// Threads as many as there are tasks at the same time: an idle one is taken again, else another is started,
// and one that has been idle for a while ends. A further thread keeps the time while a task is delayed. Where
// no thread can be had, a task waits for the next one that is free, or for the next task that comes.
class LinuxBackgroundQueue final : public BackgroundQueue {
 public:
    explicit LinuxBackgroundQueue(std::chrono::nanoseconds idleTime = std::chrono::seconds(5));
    // Waits for no task. Those that have not begun are dropped.
    ~LinuxBackgroundQueue() override;
    LinuxBackgroundQueue(const LinuxBackgroundQueue&) = delete;
    LinuxBackgroundQueue& operator=(const LinuxBackgroundQueue&) = delete;

    void async(Task task) override;
    void asyncAfter(std::chrono::nanoseconds delay, Task task) override;

    // Any thread. No further task begins, and what still comes is dropped. `kept`, which running tasks may
    // still use, goes away when the last of them has returned, on its thread.
    void close(std::shared_ptr<void> kept);

 private:
    struct State;

    std::shared_ptr<State> state_;
};

}  // namespace norvane
