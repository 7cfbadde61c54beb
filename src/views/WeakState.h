#pragma once

#include <memory>
#include <optional>

#include "views/State.h"

namespace norvane {

// A way to a component's state that does not keep it: for what is kept by others, or by the state itself. A
// `State` in a subscription that the state holds would keep both for ever, and one in a task that runs
// elsewhere might have the state end there. Copied and destroyed on any thread; everything else on the main
// thread.
template <typename Value>
class WeakState {
 public:
    explicit WeakState(const State<Value>& state) : cell_(state.cell_) {}

    // None once nobody keeps the state any more.
    std::optional<State<Value>> lock() const {
        auto cell = cell_.lock();
        return cell ? std::optional(State<Value>(std::move(cell))) : std::nullopt;
    }

 private:
    std::weak_ptr<typename State<Value>::Cell> cell_;
};

}  // namespace norvane
