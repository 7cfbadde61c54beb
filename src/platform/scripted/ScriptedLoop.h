#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/MonotonicInstant.h"
#include "platform/scripted/ScriptedTime.h"
#include "platform/Task.h"

namespace norvane {

// All queues and timers of the scripted machine, on one thread and in virtual time. Of the tasks that are
// ready, the one enqueued first runs first, whichever queue it is on: a queue's own order always holds, and
// two queues interleave the same way in every run. A queue can be held back: its tasks then wait.
class ScriptedLoop {
 public:
    // One queue's waiting tasks.
    class Queue {
     public:
        // Tasks wait until the queue is let go; then those that waited run in their order.
        void hold() { held_ = true; }
        void letGo() { held_ = false; }
        // The owner is gone: what waits is dropped, what comes is ignored.
        void close();
        std::size_t waiting() const { return tasks_.size(); }
        std::uint64_t ran() const { return ran_; }

     private:
        friend class ScriptedLoop;
        std::deque<std::pair<std::uint64_t, std::shared_ptr<Task>>> tasks_;
        bool held_ = false;
        bool closed_ = false;
        std::uint64_t ran_ = 0;
    };

    // A firing in the future, once or repeatedly. It ends when its last pointer goes away.
    class Timer {
     private:
        friend class ScriptedLoop;
        std::shared_ptr<Queue> queue_;
        std::shared_ptr<Task> task_;
        std::optional<std::chrono::nanoseconds> interval_;
        bool pending_ = false;
    };

    explicit ScriptedLoop(ScriptedTime& time) : time_(time) {}

    std::shared_ptr<Queue> makeQueue();
    void enqueue(const std::shared_ptr<Queue>& queue, Task task);
    // The first firing after `delay`; with an interval again and again, missed firings as one.
    std::shared_ptr<Timer> schedule(const std::shared_ptr<Queue>& queue, std::chrono::nanoseconds delay,
                                    std::optional<std::chrono::nanoseconds> interval, Task task);
    // As `schedule` without an interval, with nobody to end it.
    void scheduleOnce(const std::shared_ptr<Queue>& queue, std::chrono::nanoseconds delay, Task task);

    // Runs what is ready, and what that makes ready, without letting time pass.
    void runReady();
    // Runs one ready task; false if there is none.
    bool runNext();
    // Lets time pass, stopping at each firing on the way.
    void advance(std::chrono::nanoseconds by);
    // When the next firing is due, perhaps of a timer that has ended; none if nothing is.
    std::optional<MonotonicInstant> nextFiring() const {
        return firings_.empty() ? std::nullopt : std::optional(firings_.begin()->first);
    }

 private:
    struct Firing {
        std::weak_ptr<Timer> timer;
        std::shared_ptr<Timer> unowned;  // set where nobody else keeps the timer
    };

    std::shared_ptr<Queue> nextQueue() const;
    std::shared_ptr<Timer> makeTimer(const std::shared_ptr<Queue>& queue,
                                     std::optional<std::chrono::nanoseconds> interval, Task task) const;
    void fire(const Firing& firing, MonotonicInstant deadline);
    void push(const std::shared_ptr<Queue>& queue, std::shared_ptr<Task> task);

    ScriptedTime& time_;
    std::uint64_t sequence_ = 0;
    std::vector<std::weak_ptr<Queue>> queues_;
    std::multimap<MonotonicInstant, Firing> firings_;
};

}  // namespace norvane
