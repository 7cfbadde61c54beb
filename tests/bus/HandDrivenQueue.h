#pragma once

#include <map>
#include <optional>
#include <utility>

#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"

namespace norvane {

// A queue whose time passes when it is told to.
class HandDrivenQueue final : public MainQueue, public MonotonicClock {
 public:
    using Duration = std::chrono::nanoseconds;

    void async(Task task) override { tasks_[{now_, count_++}] = std::move(task); }
    Cancellation after(Duration delay, Task task) override {
        const std::pair key(now_ + delay, count_++);
        tasks_[key] = std::move(task);
        return Cancellation([this, key] { tasks_.erase(key); });
    }
    MonotonicInstant now() const override { return MonotonicInstant(now_); }
    void advance(Duration by) {
        now_ += by;
        while (!tasks_.empty() && tasks_.begin()->first.first <= now_)
            tasks_.extract(tasks_.begin()).mapped()();
    }
    std::optional<Duration> untilTheNext() const {
        return tasks_.empty() ? std::nullopt : std::optional(tasks_.begin()->first.first - now_);
    }

 private:
    Duration now_{0};
    int count_ = 0;
    std::map<std::pair<Duration, int>, Task> tasks_;
};

}  // namespace norvane
