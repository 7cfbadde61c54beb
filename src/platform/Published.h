#pragma once

#include <mutex>
#include <utility>

#include "platform/Observers.h"

namespace norvane {

// A value that the main thread writes and everybody reads. A write tells the observers, on the main thread,
// after the value has been stored, whether it changed or not. Other threads get a copy; so that the copy is
// short, a large value is published as a shared pointer to an immutable one.
template <typename Value>
class Published {
 public:
    explicit Published(Value initial = {}) : value_(std::move(initial)) {}

    // Any thread.
    Value get() const {
        const std::lock_guard lock(mutex_);
        return value_;
    }

    // Main thread only. Not from an observer of the same value: later observers would hear the older value
    // last.
    void set(Value value) {
        Value old = value;
        {
            const std::lock_guard lock(mutex_);
            std::swap(value_, old);
        }
        // The old value, perhaps the last pointer to something large, goes away outside the lock.
        observers_.tell(value);
    }

    // Main thread only. The observer hears of every later write. Whoever may read may observe.
    [[nodiscard]] Cancellation observe(std::function<void(const Value&)> observer) const {
        return observers_.add(std::move(observer));
    }

 private:
    mutable std::mutex mutex_;
    Value value_;  // guarded by mutex_
    mutable Observers<Value> observers_;
};

}  // namespace norvane
