#pragma once

#include "platform/TickToken.h"

namespace norvane {

// A reading that everything in one tick shares. Without a tick, and in a new one, it is taken anew: never is
// it a question of age. Belongs to the sampler's queue.
template <typename Value>
class PerTick {
 public:
    // `read(Value&)` brings the value up to date; it may use the old one's memory again.
    template <typename Read>
    const Value& get(TickToken tick, Read&& read) {
        if (tick == TickToken::none() || !(tick == tick_)) {
            tick_ = tick;
            read(value_);
        }
        return value_;
    }

 private:
    TickToken tick_ = TickToken::none();
    Value value_{};
};

}  // namespace norvane
