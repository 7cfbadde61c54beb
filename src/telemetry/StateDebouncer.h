#pragma once

#include <chrono>
#include <optional>

#include "platform/WallInstant.h"

namespace norvane {

// Lets a state change through only after it has held for a time: 5 seconds for a worsening, 10 for a
// recovery, however many steps it spans. A state that returns to the stable one in between starts from
// nothing.
template <typename State>
class StateDebouncer {
 public:
    static constexpr std::chrono::seconds kWorsening{5};
    static constexpr std::chrono::seconds kRecovery{10};

    // Returns the stable state. A change takes effect only in such a call.
    State update(State newState, WallInstant now) {
        if (newState == currentState_) {
            candidate_.reset();
            return currentState_;
        }
        if (!candidate_ || candidate_->state != newState) {
            candidate_ = Candidate{newState, now};
            return currentState_;
        }
        const auto needed = currentState_ < newState ? kWorsening : kRecovery;
        if (now - candidate_->since < needed) return currentState_;
        currentState_ = newState;
        candidate_.reset();
        return currentState_;
    }

    State currentState() const { return currentState_; }

 private:
    struct Candidate {
        State state;
        WallInstant since;
    };

    State currentState_{};                // the lowest
    std::optional<Candidate> candidate_;  // the different state that is being timed
};

}  // namespace norvane
