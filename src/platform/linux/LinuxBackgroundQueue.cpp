#include "platform/linux/LinuxBackgroundQueue.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "platform/linux/Deadline.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/QueueThread.h"

namespace norvane {

// What the queue shares with its threads, which nobody joins: a stuck one may outlive the queue.
struct LinuxBackgroundQueue::State : std::enable_shared_from_this<State> {
    explicit State(std::chrono::nanoseconds idle) : idleTime(idle) {}

    const std::chrono::nanoseconds idleTime;
    LinuxMonotonicClock clock;
    std::mutex mutex;
    std::condition_variable workCame;
    std::condition_variable delayedChanged;

    // All guarded by mutex.
    bool isClosed = false;
    std::deque<Task> waiting;
    std::multimap<MonotonicInstant, Task> delayed;  // equal ones in the order in which they came
    std::size_t freeWorkers = 0;                    // idle or just starting
    std::size_t runningTasks = 0;
    bool hasTimekeeper = false;
    std::shared_ptr<void> kept;

    void work();
    void keepTime();

    // The calls below come with mutex held.
    void callWorker();
    void callTimekeeper();
    bool takeDue(MonotonicInstant now);
    void runNext(std::unique_lock<std::mutex>& lock);
    bool awaitWork(std::unique_lock<std::mutex>& lock);
};

void LinuxBackgroundQueue::State::callWorker() {
    if (freeWorkers >= waiting.size()) {
        workCame.notify_one();
        return;
    }
    std::thread thread = startQueueThread("background", ThreadPriority::normal,
                                          [state = shared_from_this()] { state->work(); });
    if (!thread.joinable()) return;
    thread.detach();
    ++freeWorkers;
}

void LinuxBackgroundQueue::State::work() {
    std::unique_lock lock(mutex);
    do {
        --freeWorkers;
        while (!isClosed && (!waiting.empty() || takeDue(clock.now())))
            runNext(lock);
        ++freeWorkers;
    } while (awaitWork(lock));
    --freeWorkers;
}

void LinuxBackgroundQueue::State::runNext(std::unique_lock<std::mutex>& lock) {
    {
        Task task = std::move(waiting.front());
        waiting.pop_front();
        ++runningTasks;
        lock.unlock();
        task();
    }  // and what it captured goes away without the lock, too
    lock.lock();
    --runningTasks;
    if (runningTasks > 0 || kept == nullptr) return;
    auto last = std::exchange(kept, nullptr);
    lock.unlock();
    last.reset();
    lock.lock();
}

// Whether there is something to do; after the idle time there is not.
bool LinuxBackgroundQueue::State::awaitWork(std::unique_lock<std::mutex>& lock) {
    const auto end = steadyTime(deadlineAfter(clock.now(), idleTime));
    workCame.wait_until(lock, end, [this] { return isClosed || !waiting.empty(); });
    return !isClosed && !waiting.empty();
}

void LinuxBackgroundQueue::State::callTimekeeper() {
    if (hasTimekeeper) {
        delayedChanged.notify_one();
        return;
    }
    std::thread thread = startQueueThread("background time", ThreadPriority::normal,
                                          [state = shared_from_this()] { state->keepTime(); });
    if (!thread.joinable()) return;
    thread.detach();
    hasTimekeeper = true;
}

void LinuxBackgroundQueue::State::keepTime() {
    std::unique_lock lock(mutex);
    while (!isClosed && !delayed.empty()) {
        if (takeDue(clock.now())) continue;
        const auto deadline = steadyTime(delayed.begin()->first);
        delayedChanged.wait_until(lock, deadline);
    }
    hasTimekeeper = false;
}

// Lets the delayed tasks whose time has come wait for a worker.
bool LinuxBackgroundQueue::State::takeDue(MonotonicInstant now) {
    bool tookAny = false;
    while (!delayed.empty() && delayed.begin()->first <= now) {
        waiting.push_back(std::move(delayed.begin()->second));
        delayed.erase(delayed.begin());
        callWorker();
        tookAny = true;
    }
    return tookAny;
}

LinuxBackgroundQueue::LinuxBackgroundQueue(std::chrono::nanoseconds idleTime)
    : state_(std::make_shared<State>(idleTime)) {}

LinuxBackgroundQueue::~LinuxBackgroundQueue() {
    close(nullptr);
}

void LinuxBackgroundQueue::async(Task task) {
    const std::lock_guard lock(state_->mutex);
    if (state_->isClosed) return;
    state_->waiting.push_back(std::move(task));
    state_->callWorker();
}

void LinuxBackgroundQueue::asyncAfter(std::chrono::nanoseconds delay, Task task) {
    const std::lock_guard lock(state_->mutex);
    if (state_->isClosed) return;
    const auto entry = state_->delayed.emplace(deadlineAfter(state_->clock.now(), delay), std::move(task));
    const bool isEarliest = entry == state_->delayed.begin();
    if (isEarliest || !state_->hasTimekeeper) state_->callTimekeeper();
}

void LinuxBackgroundQueue::close(std::shared_ptr<void> kept) {
    std::deque<Task> dropped;
    std::multimap<MonotonicInstant, Task> droppedToo;
    {
        const std::lock_guard lock(state_->mutex);
        state_->isClosed = true;
        dropped.swap(state_->waiting);
        droppedToo.swap(state_->delayed);
        if (state_->runningTasks > 0 && kept != nullptr) state_->kept = std::move(kept);
    }
    state_->workCame.notify_all();
    state_->delayedChanged.notify_all();
}

}  // namespace norvane
