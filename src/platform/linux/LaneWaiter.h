#pragma once

#include <chrono>
#include <functional>

namespace norvane {

// How a tick waits for its lanes. In the program it stops the thread; a test grants the time instead.
class LaneWaiter {
 public:
    virtual ~LaneWaiter() = default;

    // Any thread. Something that the tick may be waiting for is there.
    virtual void arrived() = 0;

    // Returns once `allIn` says true, and after `budget` at the latest. `allIn` may be asked often.
    virtual void wait(const std::function<bool()>& allIn, std::chrono::nanoseconds budget) = 0;
};

}  // namespace norvane
