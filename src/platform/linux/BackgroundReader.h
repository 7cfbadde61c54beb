#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"

namespace norvane {

// Reads on the background queue what somebody on the main thread wants to know. Main thread only. Of a
// reading that is under way when this goes away, nobody hears.
class BackgroundReader {
 public:
    // The queues outlive this.
    BackgroundReader(MainQueue& mainQueue, BackgroundQueue& backgroundQueue)
        : backgroundQueue_(backgroundQueue), side_(std::make_shared<Side>()) {
        side_->mainQueue = &mainQueue;
    }
    ~BackgroundReader() {
        const std::lock_guard lock(side_->mutex);
        side_->mainQueue = nullptr;
    }
    BackgroundReader(const BackgroundReader&) = delete;
    BackgroundReader& operator=(const BackgroundReader&) = delete;

    // `take` is called on the main thread, never from within this call; without a value where there was no
    // memory. It may be the end of this.
    template <typename Value>
    void read(std::function<Value()> read, std::function<void(std::optional<Value>)> take) {
        struct Reading {
            std::function<Value()> read;
            std::function<void(std::optional<Value>)> take;
            std::optional<Value> value;
        };
        auto reading = std::make_shared<Reading>(Reading{std::move(read), std::move(take), {}});
        backgroundQueue_.async([side = side_, reading = std::move(reading)] {
            try {
                reading->value = reading->read();
            } catch (const std::exception&) {
                reading->value.reset();
            }
            const std::lock_guard lock(side->mutex);
            if (side->mainQueue == nullptr) return;
            side->mainQueue->async([side, reading] {
                if (side->mainQueue != nullptr) reading->take(std::move(reading->value));
            });
        });
    }

 private:
    struct Side {
        std::mutex mutex;
        // Guarded by mutex, and written on the main thread alone; null once nobody is there to be told.
        MainQueue* mainQueue = nullptr;
    };

    BackgroundQueue& backgroundQueue_;
    std::shared_ptr<Side> side_;
};

}  // namespace norvane
