#include "platform/scripted/ScriptedLoop.h"

#include <algorithm>

namespace norvane {

void ScriptedLoop::Queue::close() {
    closed_ = true;
    tasks_.clear();
}

std::shared_ptr<ScriptedLoop::Queue> ScriptedLoop::makeQueue() {
    auto queue = std::make_shared<Queue>();
    queues_.push_back(queue);
    return queue;
}

void ScriptedLoop::push(const std::shared_ptr<Queue>& queue, std::shared_ptr<Task> task) {
    if (!queue->closed_) queue->tasks_.emplace_back(++sequence_, std::move(task));
}

void ScriptedLoop::enqueue(const std::shared_ptr<Queue>& queue, Task task) {
    push(queue, std::make_shared<Task>(std::move(task)));
}

std::shared_ptr<ScriptedLoop::Timer> ScriptedLoop::makeTimer(const std::shared_ptr<Queue>& queue,
                                                             std::optional<std::chrono::nanoseconds> interval,
                                                             Task task) const {
    auto timer = std::make_shared<Timer>();
    timer->queue_ = queue;
    timer->task_ = std::make_shared<Task>(std::move(task));
    timer->interval_ = interval;
    return timer;
}

std::shared_ptr<ScriptedLoop::Timer> ScriptedLoop::schedule(const std::shared_ptr<Queue>& queue,
                                                            std::chrono::nanoseconds delay,
                                                            std::optional<std::chrono::nanoseconds> interval,
                                                            Task task) {
    auto timer = makeTimer(queue, interval, std::move(task));
    firings_.emplace(time_.monotonic() + delay, Firing{timer, nullptr});
    return timer;
}

void ScriptedLoop::scheduleOnce(const std::shared_ptr<Queue>& queue, std::chrono::nanoseconds delay,
                                Task task) {
    auto timer = makeTimer(queue, std::nullopt, std::move(task));
    firings_.emplace(time_.monotonic() + delay, Firing{timer, timer});
}

std::shared_ptr<ScriptedLoop::Queue> ScriptedLoop::nextQueue() const {
    std::shared_ptr<Queue> next;
    for (const auto& weak : queues_) {
        auto queue = weak.lock();
        if (!queue || queue->held_ || queue->tasks_.empty()) continue;
        if (!next || queue->tasks_.front().first < next->tasks_.front().first) next = std::move(queue);
    }
    return next;
}

bool ScriptedLoop::runNext() {
    const auto queue = nextQueue();
    if (!queue) return false;
    const std::shared_ptr<Task> task = std::move(queue->tasks_.front().second);
    queue->tasks_.pop_front();
    ++queue->ran_;
    (*task)();
    return true;
}

void ScriptedLoop::runReady() {
    advance(std::chrono::nanoseconds::zero());
}

void ScriptedLoop::fire(const Firing& firing, MonotonicInstant deadline) {
    const auto timer = firing.timer.lock();
    if (!timer) return;
    if (firing.unowned) {
        push(timer->queue_, timer->task_);
        return;
    }
    if (timer->interval_) {
        // Stay on the grid, however late this firing is.
        const auto late = time_.monotonic() - deadline;
        firings_.emplace(deadline + (late / *timer->interval_ + 1) * *timer->interval_, firing);
        if (timer->pending_) return;  // the last firing still waits for its queue: one is enough
        timer->pending_ = true;
    }
    // A timer that ends before its firing's turn comes does not run.
    push(timer->queue_, std::make_shared<Task>([weak = std::weak_ptr(timer)] {
             const auto alive = weak.lock();
             if (!alive) return;
             alive->pending_ = false;
             const auto task = alive->task_;  // the task may end its own timer
             (*task)();
         }));
}

void ScriptedLoop::advance(std::chrono::nanoseconds by) {
    const MonotonicInstant target = time_.monotonic() + by;
    for (;;) {
        while (runNext()) {
        }
        if (firings_.empty() || firings_.begin()->first > target) break;
        const MonotonicInstant deadline = firings_.begin()->first;
        const Firing firing = firings_.begin()->second;
        firings_.erase(firings_.begin());
        if (deadline > time_.monotonic()) time_.pass(deadline - time_.monotonic());
        fire(firing, deadline);
    }
    if (target > time_.monotonic()) time_.pass(target - time_.monotonic());
    queues_.erase(
        std::remove_if(queues_.begin(), queues_.end(), [](const auto& queue) { return queue.expired(); }),
        queues_.end());
}

}  // namespace norvane
