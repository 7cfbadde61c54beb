#include "platform/linux/ThreadLane.h"

#include <pthread.h>
#include <signal.h>

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace norvane {

struct ThreadLane::State {
    std::mutex mutex;
    std::condition_variable wake;
    Task waiting;       // guarded by mutex
    bool over = false;  // guarded by mutex

    void run() {
        std::unique_lock lock(mutex);
        for (;;) {
            wake.wait(lock, [this] { return over || waiting; });
            if (over) return;
            Task task = std::move(waiting);
            lock.unlock();
            task();
            task = {};
            lock.lock();
        }
    }
};

ThreadLane::ThreadLane(std::string name) : name_(std::move(name)), state_(std::make_shared<State>()) {}

ThreadLane::~ThreadLane() {
    Task dropped;
    {
        const std::lock_guard lock(state_->mutex);
        state_->over = true;
        dropped = std::move(state_->waiting);
    }
    state_->wake.notify_one();
}

bool ThreadLane::post(Task task) {
    if (!started_) {
        // Signals are for the threads that wait for them: a new thread inherits the mask.
        sigset_t all;
        sigset_t before;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
        try {
            std::thread thread([state = state_] { state->run(); });
            pthread_setname_np(thread.native_handle(), name_.substr(0, 15).c_str());
            thread.detach();
            started_ = true;
        } catch (const std::system_error&) {
            // No more threads just now; a later task tries again.
        }
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        if (!started_) return false;
    }
    {
        const std::lock_guard lock(state_->mutex);
        if (state_->waiting) return false;
        state_->waiting = std::move(task);
    }
    state_->wake.notify_one();
    return true;
}

}  // namespace norvane
