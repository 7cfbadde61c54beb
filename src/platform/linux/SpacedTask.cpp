#include "platform/linux/SpacedTask.h"

#include <algorithm>
#include <utility>

namespace norvane {

SpacedTask::SpacedTask(MainQueue& mainQueue, const MonotonicClock& clock, std::chrono::nanoseconds pause,
                       std::function<bool()> run)
    : mainQueue_(mainQueue), clock_(clock), pause_(pause), run_(std::move(run)) {}

void SpacedTask::request() {
    if (timer_) return;
    std::chrono::nanoseconds wait{0};
    if (ran_) wait = std::max(wait, *ran_ + pause_ - clock_.now());
    timer_ = mainQueue_.after(wait, [this] { run(); });
}

void SpacedTask::run() {
    timer_.cancel();
    // First, since what runs may request the next.
    const auto before = std::exchange(ran_, clock_.now());
    if (!run_()) ran_ = before;
}

}  // namespace norvane
