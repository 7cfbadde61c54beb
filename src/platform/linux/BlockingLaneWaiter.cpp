#include "platform/linux/BlockingLaneWaiter.h"

namespace norvane {

void BlockingLaneWaiter::arrived() {
    { const std::lock_guard lock(mutex_); }
    wake_.notify_all();
}

void BlockingLaneWaiter::wait(const std::function<bool()>& allIn, std::chrono::nanoseconds budget) {
    std::unique_lock lock(mutex_);
    wake_.wait_for(lock, budget, allIn);
}

}  // namespace norvane
