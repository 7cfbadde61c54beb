#include "platform/linux/LinuxSerialQueue.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/QueueThread.h"
#include "platform/linux/RepeatingDeadline.h"

namespace norvane {

struct LinuxSerialQueue::Timer {
    Timer(RepeatingDeadline when, Task what) : deadline(when), task(std::move(what)) {}

    RepeatingDeadline deadline;  // guarded by the queue's mutex
    Task task;                   // runs on the queue's thread only
};

// What the queue shares with its thread and its timers, any of which may be the last to go.
struct LinuxSerialQueue::State {
    struct Entry {
        MonotonicInstant since;
        Task task;
    };

    LinuxMonotonicClock clock;
    std::mutex mutex;
    std::condition_variable changed;

    // All guarded by mutex.
    bool isStopped = false;
    bool isWaiting = false;
    std::vector<Entry> arrived;
    std::vector<Entry> batch;  // older than what arrived; done up to nextInBatch
    std::size_t nextInBatch = 0;
    std::vector<std::shared_ptr<Timer>> timers;

    void run();

    // The calls below come with mutex held.
    Entry* oldestTask();
    std::shared_ptr<Timer>* earliestTimer();
    void runTask(std::unique_lock<std::mutex>& lock, Entry& entry);
    void fire(std::unique_lock<std::mutex>& lock, std::shared_ptr<Timer> timer, MonotonicInstant now);
    void wait(std::unique_lock<std::mutex>& lock, const std::shared_ptr<Timer>* timer);
};

void LinuxSerialQueue::State::run() {
    std::unique_lock lock(mutex);
    while (!isStopped) {
        const auto now = clock.now();
        Entry* const task = oldestTask();
        const std::shared_ptr<Timer>* const timer = earliestTimer();
        const bool isTimerDue = timer != nullptr && (*timer)->deadline.next() <= now;
        if (isTimerDue && (task == nullptr || (*timer)->deadline.next() <= task->since)) {
            fire(lock, *timer, now);
        } else if (task != nullptr) {
            runTask(lock, *task);
        } else {
            wait(lock, timer);
        }
    }
    const auto droppedBatch = std::exchange(batch, {});
    const auto droppedArrived = std::exchange(arrived, {});
    const auto droppedTimers = std::exchange(timers, {});
    lock.unlock();
}

LinuxSerialQueue::State::Entry* LinuxSerialQueue::State::oldestTask() {
    if (nextInBatch == batch.size()) {
        batch.clear();
        nextInBatch = 0;
        batch.swap(arrived);
    }
    return batch.empty() ? nullptr : &batch[nextInBatch];
}

std::shared_ptr<LinuxSerialQueue::Timer>* LinuxSerialQueue::State::earliestTimer() {
    const auto earliest = std::min_element(
        timers.begin(), timers.end(),
        [](const auto& one, const auto& other) { return one->deadline.next() < other->deadline.next(); });
    return earliest == timers.end() ? nullptr : &*earliest;
}

void LinuxSerialQueue::State::runTask(std::unique_lock<std::mutex>& lock, Entry& entry) {
    {
        Task task = std::move(entry.task);
        ++nextInBatch;
        lock.unlock();
        task();
    }  // and what it captured goes away without the lock, too
    lock.lock();
}

void LinuxSerialQueue::State::fire(std::unique_lock<std::mutex>& lock, std::shared_ptr<Timer> timer,
                                   MonotonicInstant now) {
    timer->deadline.fire(now);
    lock.unlock();
    timer->task();
    timer.reset();  // perhaps the last to hold it, if the task ended its own timer
    lock.lock();
}

void LinuxSerialQueue::State::wait(std::unique_lock<std::mutex>& lock, const std::shared_ptr<Timer>* timer) {
    isWaiting = true;
    if (timer == nullptr) {
        changed.wait(lock);
    } else {
        const auto deadline = steadyTime((*timer)->deadline.next());
        changed.wait_until(lock, deadline);
    }
    isWaiting = false;
}

// A timer that is ended wakes nobody: at worst the thread wakes once at the deadline that is no more.
class LinuxSerialQueue::TimerHandle final : public RepeatingTimer {
 public:
    TimerHandle(std::shared_ptr<State> state, std::shared_ptr<Timer> timer)
        : state_(std::move(state)), timer_(std::move(timer)) {}
    ~TimerHandle() override {
        const std::lock_guard lock(state_->mutex);
        std::erase(state_->timers, timer_);
    }

 private:
    std::shared_ptr<State> state_;
    std::shared_ptr<Timer> timer_;
};

LinuxSerialQueue::LinuxSerialQueue(std::string_view label)
    : state_(std::make_shared<State>()),
      thread_(startQueueThread(label, ThreadPriority::utility, [state = state_] { state->run(); })) {
    if (!thread_.joinable()) {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again),
                                "no thread for a serial queue");
    }
}

LinuxSerialQueue::~LinuxSerialQueue() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->isStopped = true;
    }
    state_->changed.notify_one();
    if (thread_.get_id() == std::this_thread::get_id()) {
        thread_.detach();
    } else {
        thread_.join();
    }
}

// The task may be the one that ends the queue, and run before `async` returns.
void LinuxSerialQueue::async(Task task) {
    const std::shared_ptr<State> state = state_;
    bool wake = false;
    {
        const std::lock_guard lock(state->mutex);
        if (state->isStopped) return;
        state->arrived.push_back({state->clock.now(), std::move(task)});
        wake = state->isWaiting;
    }
    if (wake) state->changed.notify_one();
}

std::unique_ptr<RepeatingTimer> LinuxSerialQueue::every(std::chrono::nanoseconds interval, Task task) {
    const std::shared_ptr<State> state = state_;
    auto timer = std::make_shared<Timer>(RepeatingDeadline(state->clock.now(), interval), std::move(task));
    auto handle = std::make_unique<TimerHandle>(state, timer);
    bool wake = false;
    {
        const std::lock_guard lock(state->mutex);
        if (!state->isStopped) state->timers.push_back(std::move(timer));
        wake = state->isWaiting;
    }
    if (wake) state->changed.notify_one();
    return handle;
}

}  // namespace norvane
