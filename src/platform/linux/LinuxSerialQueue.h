#pragma once

#include <memory>
#include <string_view>
#include <thread>

#include "platform/SerialQueue.h"

namespace norvane {

// A serial queue with a thread of its own, whose timed wait also drives the timers: a firing wakes this
// thread and no other. What is due runs in the order in which it became due. Once the queue has grown to its
// usual length, neither a task nor a firing allocates anything.
class LinuxSerialQueue final : public SerialQueue {
 public:
    // Throws std::system_error where no thread can be started.
    explicit LinuxSerialQueue(std::string_view label);
    // Waits for the running task, unless that is the one that destroys the queue.
    ~LinuxSerialQueue() override;
    LinuxSerialQueue(const LinuxSerialQueue&) = delete;
    LinuxSerialQueue& operator=(const LinuxSerialQueue&) = delete;

    void async(Task task) override;
    // The timer may outlive the queue.
    std::unique_ptr<RepeatingTimer> every(std::chrono::nanoseconds interval, Task task) override;

 private:
    struct State;
    struct Timer;
    class TimerHandle;

    std::shared_ptr<State> state_;
    std::thread thread_;
};

}  // namespace norvane
