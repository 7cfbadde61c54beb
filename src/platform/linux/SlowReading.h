#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/linux/ReadBehind.h"

namespace norvane {

// The answer of one slow source: the newest there is when a tick asks, a neutral one before the first.
// Sampler's queue only.
template <typename Value>
class SlowReading {
 public:
    // `read` runs on the lane and owns or shares all that it uses. `isDue`, given the newest answer, says
    // whether it is worth asking; it must not refer to this.
    SlowReading(ReadBehind& readBehind, std::unique_ptr<Lane> lane, ReadBehind::AskedBy askedBy,
                std::function<Value()> read, Value neutral,
                std::function<bool(const Value& newest, MonotonicInstant now)> isDue)
        : readBehind_(readBehind), shared_(std::make_shared<Shared>(std::move(neutral))) {
        source_ = &readBehind.add(
            std::move(lane), askedBy,
            [shared = shared_, read = std::move(read)] {
                Value value = read();
                const std::lock_guard lock(shared->mutex);
                std::swap(shared->newest, value);
            },
            [shared = shared_, isDue = std::move(isDue)](MonotonicInstant now) {
                const std::lock_guard lock(shared->mutex);
                return isDue(shared->newest, now);
            });
    }

    Value get(TickToken tick) {
        readBehind_.bring(*source_, tick);
        return newest();
    }

    // Before the first tick: has it asked then already, so that there is an answer when one is wanted.
    void askAhead() { ReadBehind::askAhead(*source_); }

    // The newest answer there is, asking for none. Any thread.
    Value newest() const {
        const std::lock_guard lock(shared_->mutex);
        return shared_->newest;
    }

 private:
    struct Shared {
        explicit Shared(Value neutral) : newest(std::move(neutral)) {}
        std::mutex mutex;
        Value newest;  // guarded by mutex
    };

    ReadBehind& readBehind_;
    ReadBehind::Source* source_ = nullptr;
    std::shared_ptr<Shared> shared_;
};

}  // namespace norvane
