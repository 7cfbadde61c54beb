#pragma once

#include <condition_variable>
#include <mutex>

#include "platform/linux/LaneWaiter.h"

namespace norvane {

// Stops the calling thread until the lanes have answered.
class BlockingLaneWaiter final : public LaneWaiter {
 public:
    void arrived() override;
    void wait(const std::function<bool()>& allIn, std::chrono::nanoseconds budget) override;

 private:
    std::mutex mutex_;  // guards nothing but the moment between asking `allIn` and falling asleep
    std::condition_variable wake_;
};

}  // namespace norvane
