#include "platform/linux/LinuxMainQueue.h"

#include <sys/eventfd.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>

#include "platform/linux/Deadline.h"

namespace norvane {

// Rather than setting a ready time, which makes the context go round once more at each change, the source
// tells its next deadline whenever the context is about to wait: delayed tasks come from its own thread only.
struct LinuxMainQueue::Source {
    GSource base;
    LinuxMainQueue* queue;

    static LinuxMainQueue& queueOf(GSource* source) { return *reinterpret_cast<Source*>(source)->queue; }

    static GSourceFuncs* functions() {
        static GSourceFuncs functions = {[](GSource* source, gint* timeout) -> gboolean {
                                             *timeout = queueOf(source).millisecondsToNextDeadline();
                                             return *timeout == 0;
                                         },
                                         [](GSource* source) -> gboolean {
                                             return queueOf(source).isWoken() ||
                                                    queueOf(source).isDelayedTaskDue();
                                         },
                                         [](GSource* source, GSourceFunc, gpointer) -> gboolean {
                                             queueOf(source).turn();
                                             return G_SOURCE_CONTINUE;
                                         },
                                         nullptr,
                                         nullptr,
                                         nullptr};
        return &functions;
    }
};

LinuxMainQueue::LinuxMainQueue() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!wakeUp_) throw std::system_error(errno, std::generic_category(), "eventfd");
    GSource* const source = g_source_new(Source::functions(), sizeof(Source));
    source_ = reinterpret_cast<Source*>(source);
    source_->queue = this;
    g_source_set_static_name(source, "main queue");
    wakeUpTag_ = g_source_add_unix_fd(source, wakeUp_.get(), G_IO_IN);
    // Else the context takes its descriptor out while it is dispatched, and goes round once more for that.
    g_source_set_can_recurse(source, TRUE);
    g_source_attach(source, nullptr);
}

LinuxMainQueue::~LinuxMainQueue() {
    close();
    g_source_unref(&source_->base);
}

void LinuxMainQueue::async(Task task) {
    {
        const std::lock_guard lock(mutex_);
        if (isClosed_) return;
        waiting_.push_back(std::move(task));
        if (std::exchange(wakeUpSent_, true)) return;
    }
    const std::uint64_t one = 1;
    // It cannot fail: the counter never exceeds 1.
    [[maybe_unused]] const ssize_t written = write(wakeUp_.get(), &one, sizeof one);
}

Cancellation LinuxMainQueue::after(std::chrono::nanoseconds delay, Task task) {
    if (isClosed_) return {};
    const DelayedKey key{deadlineAfter(clock_.now(), delay), delayedCount_++};
    delayed_->emplace(key, std::move(task));
    return Cancellation([key, delayed = std::weak_ptr(delayed_)] {
        if (const auto alive = delayed.lock()) {
            const auto dropped = alive->extract(key);  // goes away after the map is whole again
        }
    });
}

void LinuxMainQueue::close() {
    std::vector<Task> dropped;
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(isClosed_, true)) return;
        dropped.swap(waiting_);
    }
    g_source_destroy(&source_->base);
    const DelayedTasks droppedToo = std::exchange(*delayed_, {});
}

bool LinuxMainQueue::isWoken() const {
    return (g_source_query_unix_fd(&source_->base, wakeUpTag_) & G_IO_IN) != 0;
}

bool LinuxMainQueue::isDelayedTaskDue() const {
    return !delayed_->empty() && delayed_->begin()->first.first <= clock_.now();
}

// Rounded up, so that the thread is not woken before it is time; 0 where it is, -1 where nothing is delayed.
int LinuxMainQueue::millisecondsToNextDeadline() const {
    if (delayed_->empty()) return -1;
    const auto now = clock_.now();
    const auto deadline = delayed_->begin()->first.first;
    if (deadline <= now) return 0;
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count();
    return static_cast<int>(std::min<std::int64_t>(milliseconds, std::numeric_limits<int>::max()));
}

void LinuxMainQueue::turn() {
    if (isWoken()) takeWaiting();
    const auto now = clock_.now();
    for (auto next = delayed_->begin(); next != delayed_->end() && next->first.first <= now; ++next) {
        due_.push_back(next->first);
    }
    for (Task& each : running_) {
        if (isClosed_) break;
        Task task = std::move(each);
        task();
    }
    running_.clear();
    for (const DelayedKey& key : due_) {
        if (isClosed_) break;
        // An earlier task of this turn may have cancelled it.
        if (auto entry = delayed_->extract(key)) entry.mapped()();
    }
    due_.clear();
}

// The wake-up is taken before the tasks, and a task that comes between the two sends none: every wake-up
// finds something to run.
void LinuxMainQueue::takeWaiting() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t length = read(wakeUp_.get(), &count, sizeof count);
    const std::lock_guard lock(mutex_);
    running_.swap(waiting_);
    wakeUpSent_ = false;
}

}  // namespace norvane
