#include "platform/linux/ReadBehind.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace norvane {

class ReadBehind::Source {
 public:
    // One request, on its lane. Shared with it.
    struct Job {
        std::function<void()> work;
        ReadBehind::Now now;
        std::shared_ptr<LaneWaiter> waiter;
        // How many requests have been answered, and whether the last one was within the budget.
        std::atomic<std::uint64_t> answered{0};
        std::atomic<bool> wasQuick{true};

        void run() {
            const MonotonicInstant begin = now();
            try {
                work();
            } catch (...) {
                // Out of memory, say: the last answer stands.
            }
            wasQuick = now() - begin <= ReadBehind::kBudget;
            ++answered;
            waiter->arrived();
        }
    };

    std::unique_ptr<Lane> lane;
    std::shared_ptr<Job> job;
    AskedBy askedBy = nullptr;
    std::function<bool(MonotonicInstant)> isDue;
    bool isWantedAhead = false;
    std::uint64_t posted = 0;
    TickToken postedIn = TickToken::none();
    bool isAwaited = false;

    bool isBusy() const { return job->answered != posted; }
    bool isAskedBy(TickToken tick) const { return askedBy == nullptr || tick.reads.*askedBy; }
};

ReadBehind::ReadBehind(std::shared_ptr<LaneWaiter> waiter, Now now)
    : waiter_(std::move(waiter)), now_(std::move(now)) {}

ReadBehind::~ReadBehind() = default;

ReadBehind::Source& ReadBehind::add(std::unique_ptr<Lane> lane, AskedBy askedBy, std::function<void()> work,
                                    std::function<bool(MonotonicInstant)> isDue) {
    auto source = std::make_unique<Source>();
    source->lane = std::move(lane);
    source->askedBy = askedBy;
    source->job = std::make_shared<Source::Job>();
    source->job->work = std::move(work);
    source->job->now = now_;
    source->job->waiter = waiter_;
    source->isDue = std::move(isDue);
    sources_.push_back(std::move(source));
    return *sources_.back();
}

void ReadBehind::askAhead(Source& source) {
    source.isWantedAhead = true;
}

void ReadBehind::bring(Source& asked, TickToken tick) {
    const MonotonicInstant now = now_();
    if (tick == TickToken::none()) {
        postIfDue(asked, tick, now);
        std::chrono::nanoseconds budget = kBudget;
        waitWithin(budget);
        return;
    }
    if (!(tick == tick_)) {
        tick_ = tick;
        budgetLeft_ = kBudget;
        for (const auto& source : sources_) {
            if (source.get() == &asked || source->isAskedBy(tick)) {
                postIfDue(*source, tick, now);
            } else if (std::exchange(source->isWantedAhead, false)) {
                postIfDue(*source, tick, now);
                source->isAwaited = false;
            }
        }
    } else if (!(asked.postedIn == tick)) {
        postIfDue(asked, tick, now);
    }
    waitWithin(budgetLeft_);
}

void ReadBehind::postIfDue(Source& source, TickToken tick, MonotonicInstant now) {
    if (source.isBusy() || !source.isDue(now)) return;
    const bool wasQuick = source.job->wasQuick;
    ++source.posted;
    if (!source.lane->post([job = source.job] { job->run(); })) {
        --source.posted;
        return;
    }
    source.postedIn = tick;
    source.isAwaited = wasQuick;
}

void ReadBehind::waitWithin(std::chrono::nanoseconds& budget) {
    const std::function<bool()> allIn = [this] {
        return std::none_of(sources_.begin(), sources_.end(),
                            [](const auto& source) { return source->isAwaited && source->isBusy(); });
    };
    if (budget > std::chrono::nanoseconds::zero() && !allIn()) {
        const MonotonicInstant begin = now_();
        waiter_->wait(allIn, budget);
        budget = std::max(budget - (now_() - begin), std::chrono::nanoseconds::zero());
    }
    for (const auto& source : sources_)
        source->isAwaited = false;
}

}  // namespace norvane
