#pragma once

#include <glib.h>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/MainQueue.h"

namespace norvane {

// The queue of the thread that runs GLib's default main context. In each turn of the context it runs what was
// waiting when the turn began, and between two turns the context's other sources get theirs. However many
// tasks come before a turn begins, the thread is woken for them once.
class LinuxMainQueue final : public MainQueue {
 public:
    // Main thread. Throws std::system_error where the process may open no further file.
    LinuxMainQueue();
    // Not from within a task.
    ~LinuxMainQueue() override;
    LinuxMainQueue(const LinuxMainQueue&) = delete;
    LinuxMainQueue& operator=(const LinuxMainQueue&) = delete;

    void async(Task task) override;
    [[nodiscard]] Cancellation after(std::chrono::nanoseconds delay, Task task) override;

    // Main thread, also from within a task: no further task begins. What waits, and whatever still comes, is
    // dropped.
    void close();

 private:
    struct Source;
    // Delayed tasks by deadline and, among equal ones, by the order in which they came.
    using DelayedKey = std::pair<MonotonicInstant, std::uint64_t>;
    using DelayedTasks = std::map<DelayedKey, Task>;

    bool isWoken() const;
    bool isDelayedTaskDue() const;
    int millisecondsToNextDeadline() const;
    void turn();
    void takeWaiting();

    LinuxMonotonicClock clock_;
    FileDescriptor wakeUp_;  // an eventfd
    Source* source_ = nullptr;
    gpointer wakeUpTag_ = nullptr;

    std::mutex mutex_;
    std::vector<Task> waiting_;  // guarded by mutex_
    bool wakeUpSent_ = false;    // guarded by mutex_: one is on its way for all that is in waiting_
    bool isClosed_ = false;      // written on the main thread with mutex_ held

    // The main thread's own. The vectors keep their capacity.
    std::vector<Task> running_;
    std::vector<DelayedKey> due_;
    std::uint64_t delayedCount_ = 0;
    std::shared_ptr<DelayedTasks> delayed_ = std::make_shared<DelayedTasks>();
};

}  // namespace norvane
