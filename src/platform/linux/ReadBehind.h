#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/linux/Lane.h"
#include "platform/linux/LaneWaiter.h"
#include "platform/MonotonicInstant.h"
#include "platform/TickToken.h"

namespace norvane {

// Reads slow sources for a tick without ever holding it up. The first question of a tick sends a request to
// every source that is due, that the tick is going to ask and that is not still busy, and waits for all of
// them together, so that a machine whose sources are quick gets values of this very tick; later questions of
// the tick find their answers there. (A source that becomes due within the tick, or was not announced, is
// asked then, with what is left of the budget.) A source that needed more than the whole budget is asked
// without waiting until it has been quick again, and one that is stuck is not asked any more: its last answer
// stands.
//
// Sampler's queue only. What runs on the lanes shares all it uses, so that it may outlive this.
class ReadBehind {
 public:
    // What one tick waits at most, all sources together.
    static constexpr std::chrono::milliseconds kBudget{45};

    using Now = std::function<MonotonicInstant()>;
    // Which ticks ask a source; null for all of them.
    using AskedBy = bool TickReads::*;
    class Source;

    ReadBehind(std::shared_ptr<LaneWaiter> waiter, Now now);
    ~ReadBehind();

    // `work` runs on the lane; it keeps its answer itself. `isDue` is asked on the sampler's queue. The
    // source lives as long as this.
    Source& add(std::unique_ptr<Lane> lane, AskedBy askedBy, std::function<void()> work,
                std::function<bool(MonotonicInstant now)> isDue);

    // Has the source asked by the first tick there is, without waiting, whether or not that tick reads it:
    // for what is read so seldom that an answer which came too late would be missed for long.
    static void askAhead(Source& source);

    // Sees to it that `asked` has been asked in this tick, if it is due, and given time to answer. Outside a
    // tick (`TickToken::none()`) it alone is asked and has the whole budget. Allocates nothing.
    void bring(Source& asked, TickToken tick);

 private:
    void postIfDue(Source& source, TickToken tick, MonotonicInstant now);
    void waitWithin(std::chrono::nanoseconds& budget);

    std::shared_ptr<LaneWaiter> waiter_;
    Now now_;
    std::vector<std::unique_ptr<Source>> sources_;
    TickToken tick_ = TickToken::none();
    std::chrono::nanoseconds budgetLeft_{0};
};

}  // namespace norvane
