#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <utility>

#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"

namespace norvane {

// A queue whose time passes when it is told to.
class HandDrivenQueue final : public MainQueue, public MonotonicClock {
 public:
    void async(Task task) override { add(std::chrono::nanoseconds(0), std::move(task)); }
    Cancellation after(std::chrono::nanoseconds delay, Task task) override {
        const auto key = add(delay, std::move(task));
        return Cancellation([this, key] { tasks_.erase(key); });
    }
    MonotonicInstant now() const override { return MonotonicInstant(now_); }
    void advance(std::chrono::nanoseconds by) {
        now_ += by;
        while (!tasks_.empty() && tasks_.begin()->first.first <= now_) {
            auto entry = tasks_.extract(tasks_.begin());
            entry.mapped()();
        }
    }
    std::optional<std::chrono::nanoseconds> untilTheNext() const {
        if (tasks_.empty()) return std::nullopt;
        return tasks_.begin()->first.first - now_;
    }

 private:
    using Key = std::pair<std::chrono::nanoseconds, int>;

    Key add(std::chrono::nanoseconds delay, Task task) {
        const Key key{now_ + delay, count_++};
        tasks_.emplace(key, std::move(task));
        return key;
    }

    std::chrono::nanoseconds now_{0};
    int count_ = 0;
    std::map<Key, Task> tasks_;
};

}  // namespace norvane
